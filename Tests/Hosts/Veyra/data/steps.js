// Changes a map step by step: of most steps a page has to show a part of the picture only. Runs in a page and without one.
const steps = [
    () => map.setRegion({ latitude: 47, longitude: 11, latitudeDelta: 9, longitudeDelta: 14 }, false),
    () => map.addAnnotation({ latitude: 48.2, longitude: 16.4, identifier: 'vienna', title: 'Vienna', pinAnimatesDrop: false }),
    () => map.addAnnotation({ latitude: 44.1, longitude: 4.9, identifier: 'south', pinColor: 'green', pinAnimatesDrop: false }),
    () => map.addOverlay({ type: 'circle', id: 'circle', latitude: 46, longitude: 9, radius: 90000, fillColor: 'c03020', fillOpacity: 0.4, strokeColor: '802010', lineWidth: 3 }),
    () => map.addAnnotation({ latitude: 50.3, longitude: 5.2, identifier: 'north', pinColor: 'purple', pinAnimatesDrop: false }),
    () => map.selectAnnotation('vienna', false),
    () => map.removeAnnotation('south'),
];
function next() {
    const step = steps.shift();
    if (step) {
        step();
        setTimeout(next, 200);
    } else if (typeof document === 'undefined')
        setTimeout(close, 1000);
    else
        setTimeout(() => document.title = 'done', 1000);
}
setTimeout(next, 500);
