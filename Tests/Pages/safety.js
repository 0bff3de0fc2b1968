// Pages that pull the ground from under a call, an event or an animation. Each ends with a map that still works.
'use strict';

const vienna = { latitude: 48.2, longitude: 16.4, latitudeDelta: 2, longitudeDelta: 2 };

async function mapsStillWork() {
    const map = addMap();
    let region = null;
    map.listener = { mapRegionDidChange(changed) { region = changed; } };
    map.setRegion(vienna, false);
    await until(() => region && Math.abs(region.latitude - vienna.latitude) < 1e-6, 'a region after it');
}

function message(body) {
    try {
        body();
    } catch (error) {
        return `${error.name}: ${error.message}`;
    }
    return 'nothing thrown';
}

behaviour('an element removed in its own event is no map any more', async () => {
    const map = addMap();
    let events = 0;
    map.listener = { mapRegionDidChange() { ++events; map.remove(); } };
    map.setRegion(vienna, false);
    await until(() => !map.isConnected, 'the removal');
    await frame();
    equal(events, 1, 'events');
    equal(map.region, undefined, 'region of the removed element');
    await mapsStillWork();
});

behaviour('a getter may remove the element in the middle of a call', async () => {
    const map = addMap();
    map.setRegion({ ...vienna, get longitude() { map.remove(); return 16; } }, true);
    equal(map.region, undefined, 'region of the removed element');
    await mapsStillWork();
});

behaviour('a conversion whose argument removes the element ends as it would', async () => {
    const map = addMap();
    await until(() => map.region.latitudeDelta > 0, 'the first region');
    const point = { x: 20, y: 30 };
    const expected = JSON.stringify(map.convertPointToCoordinate(point));
    const removing = { ...point, get y() { map.remove(); return 30; } };
    equal(JSON.stringify(map.convertPointToCoordinate(removing)), expected, 'the coordinate');
    equal(message(() => map.convertPointToCoordinate(point)),
        'TypeError: The method was called on an object that is no map', 'the next call');
    await mapsStillWork();
});

behaviour('a getter that throws reads as absent', () => {
    const map = addMap();
    const region = { ...vienna };
    Object.defineProperty(region, 'latitudeDelta', { get() { throw new Error('no delta'); } });
    equal(message(() => map.setRegion(region, false)),
        "Error: Object passed to 'setRegion' does not contain keys (\n    latitudeDelta\n)", 'message');
});

behaviour('a proxy is read like any object', async () => {
    const map = addMap();
    let region = null;
    const keys = [];
    map.listener = { mapRegionDidChange(changed) { region = changed; } };
    map.setRegion(new Proxy(vienna, { get(target, key) { keys.push(key); return target[key]; } }), false);
    await until(() => region && Math.abs(region.latitude - vienna.latitude) < 1e-6, 'the region');
    equal(keys.join(), 'latitude,longitude,latitudeDelta,longitudeDelta,latitudeDelta,longitudeDelta,latitude,longitude',
        'keys read');
});

behaviour('bad arguments are refused in the words of the method', () => {
    const map = addMap();
    equal(message(() => map.setRegion()), "Error: Invalid object passed to 'setRegion'", 'none');
    equal(message(() => map.setRegion(null)), "Error: Null object passed to 'setRegion'", 'null');
    equal(message(() => map.setRegion('x')), "Error: Invalid object passed to 'setRegion'", 'string');
    equal(message(() => map.setRegion(5)), "Error: Invalid object passed to 'setRegion'", 'number');
    equal(message(() => { map.region = null; }), "Error: Null object passed to '(null)'", 'assignment');
});

behaviour('a frame may go away in the middle of a call', async () => {
    const element = document.createElement('iframe');
    document.getElementById('stage').append(element);
    const map = addMap(element.contentDocument);
    // From then on nothing can be read for a map that has gone.
    const thrown = message(() => map.setRegion({ ...vienna, get latitude() { element.remove(); return 48; } }, true));
    equal(thrown, "Error: Object passed to 'setRegion' does not contain keys " +
        '(\n    latitude,\n    longitude,\n    latitudeDelta,\n    longitudeDelta\n)', 'message');
    equal(document.querySelector('iframe'), null, 'frame');
    await mapsStillWork();
});

behaviour('a frame may go to another page in the middle of a call', async () => {
    const element = document.createElement('iframe');
    await loaded(element, () => {
        element.src = 'blank.html';
        document.getElementById('stage').append(element);
    });
    const map = addMap(element.contentDocument);
    await loaded(element, () => {
        map.setRegion({ ...vienna, get latitude() { element.contentWindow.location = 'map.html'; return 48; } }, true);
    });
    equal(message(() => map.region), 'ReferenceError: The page of this map has gone', 'a member of the old page');
    await mapsStillWork();
});

behaviour('a frame removed during an animation ends it', async () => {
    const element = document.createElement('iframe');
    document.getElementById('stage').append(element);
    const map = addMap(element.contentDocument);
    let started = false;
    map.listener = { mapRegionWillChange() { started = true; } };
    await until(() => started, 'the first layout');
    started = false;
    map.setRegion(vienna, true);
    await until(() => started, 'the start');
    await frame();
    element.remove();
    await frame();
    await mapsStillWork();
});

behaviour('a big integer reads as absent', () => {
    equal(message(() => addMap().setCenterCoordinate({ latitude: 1n, longitude: 2 }, false)),
        "Error: Object passed to 'setCenterCoordinate' does not contain keys (\n    latitude\n)", 'message');
});

behaviour('numbers that are none are clamped or ignored', async () => {
    const map = addMap();
    let region = null;
    map.listener = { mapRegionDidChange(changed) { region = changed; } };
    await until(() => region, 'the first layout');
    for (const value of [NaN, Infinity, -Infinity, 1e308, '12.5', {}, []]) {
        map.setRegion({ latitude: value, longitude: value, latitudeDelta: value, longitudeDelta: value }, false);
        map.setCenterCoordinate({ latitude: value, longitude: value }, false);
    }
    await frame();
    for (const value of Object.values(map.region))
        equal(Number.isFinite(value), true, 'finite');
    await mapsStillWork();
});
