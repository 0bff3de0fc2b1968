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
let isLoading = false;
map.listener = { mapWillStartLoadingMap: () => isLoading = true, mapDidFinishLoadingMap: () => isLoading = false };
function next() {
    const step = steps.shift();
    if (step) {
        step();
        setTimeout(next, 200);
    } else
        setTimeout(end, 2000); // the last names come after the tiles
}
function end() {
    if (isLoading) // on a busy machine
        setTimeout(end, 1000);
    else if (typeof document === 'undefined')
        close();
    else
        document.title = 'done';
}
setTimeout(next, 500);
