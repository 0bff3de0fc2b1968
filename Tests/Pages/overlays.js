// Overlays in a page: events, hostile input, and pages that go while they are read or drawn.
'use strict';

const here = { latitude: 10, longitude: 20, latitudeDelta: 2, longitudeDelta: 2 };
const line = (id, more) => ({ type: 'polyline', id, coordinates: [9.5, 19.5, 10.5, 20.5], ...more });

// A map that shows `here`.
async function addMapHere(doc = document) {
    const map = addMap(doc);
    let isThere = false;
    map.listener = { mapRegionDidChange(region) { isThere ||= Math.abs(region.latitude - here.latitude) < 1e-6; } };
    map.setRegion(here, false);
    await until(() => isThere, 'the region');
    return map;
}

// Adds and waits for the identifiers of the event.
function added(map, add) {
    return new Promise((resolve) => {
        map.listener = { mapDidAddOverlays(...identifiers) { resolve(identifiers.join(' ')); } };
        add();
    });
}

behaviour('overlays in sight are reported together', async () => {
    const map = await addMapHere();
    equal(await added(map, () => {
        map.addOverlays([line('a'), line('b'), line('far', { coordinates: [50, 100, 51, 101] }), line('c')]);
    }), 'a b c', 'identifiers');
    equal([...map.overlays].sort().join(' '), 'a b c far', 'overlays');
    equal(await added(map, () => map.setRegion({ ...here, latitude: 50, longitude: 100 }, false)), 'far', 'later');
});

behaviour('a line of a million vertices is added in a moment', async () => {
    const map = await addMapHere();
    const coordinates = Array.from({ length: 2e6 }, (_, i) => (i % 2 ? 20 + Math.cos(i / 1e4) : 10 + Math.sin(i / 3e4)));
    const start = performance.now();
    equal(await added(map, () => map.addOverlay(line('long', { coordinates }))), 'long', 'identifiers');
    const taken = performance.now() - start;
    if (taken > 2000)
        throw new Error(`it took ${taken} ms`);
});

behaviour('a line of ten million vertices can be moved about', async () => {
    const map = await addMapHere();
    const coordinates = new Float64Array(2e7);
    for (let i = 0; i < 2e7; ++i)
        coordinates[i] = i % 2 ? 20 + Math.cos(i / 1e5) : 10 + Math.sin(i / 3e5);
    const start = performance.now();
    equal(await added(map, () => map.addOverlay(line('long', { coordinates }))), 'long', 'identifiers');
    const taken = performance.now() - start;
    if (taken > 60000)
        throw new Error(`it took ${taken} ms`);
    let slowest = 0;
    let last = performance.now();
    for (let i = 0; i < 60; ++i) {
        map.setRegion({ ...here, longitude: 20 + i / 100, latitudeDelta: 2 + i / 20 }, false);
        await new Promise(requestAnimationFrame);
        slowest = Math.max(slowest, performance.now() - last);
        last = performance.now();
    }
    if (slowest > 3000)
        throw new Error(`a frame took ${slowest} ms`);
});

behaviour('a thicket that takes long to draw holds up neither the page nor what comes after it', async () => {
    const map = await addMapHere();
    const coordinates = Array.from({ length: 1e6 }, (_, i) => (i % 2 ? 20 : 10) + Math.sin(i * i % 9973));
    const types = ['polyline', 'polygon'];
    for (const lineCap of ['butt', 'round']) {
        for (const type of types) {
            await added(map, () => map.addOverlay(line('thicket', { type, coordinates, lineCap, lineJoin: 'miter',
                fillColor: 'ff0000', lineWidth: 4, lineDashPattern: [1e-12, 3, 0, 1] })));
            map.removeOverlay('thicket');
        }
    }
    equal(await added(map, () => map.addOverlay(line('a'))), 'a', 'identifiers');
});

behaviour('a getter among the coordinates may remove the element', async () => {
    const map = await addMapHere();
    const coordinates = [9, 19, 10, 20];
    Object.defineProperty(coordinates, 1, { get() { map.remove(); return 19; } });
    map.addOverlay(line('a', { coordinates }));
    equal(map.overlays, undefined, 'overlays of the removed element');
    const other = await addMapHere();
    equal(await added(other, () => other.addOverlay(line('b'))), 'b', 'another map');
});

behaviour('a frame may go while its coordinates are read', async () => {
    const frame = document.createElement('iframe');
    frame.src = 'map.html';
    document.getElementById('stage').append(frame);
    await new Promise((resolve) => frame.addEventListener('load', resolve));
    const map = await addMapHere(frame.contentDocument);
    const coordinates = new frame.contentWindow.Array(1000).fill(1);
    Object.defineProperty(coordinates, 500, { get() { frame.remove(); return 1; } });
    let message = '';
    try {
        map.addOverlay(line('a', { coordinates }));
    } catch (error) {
        message = error.message;
    }
    // The identifier is read after the coordinates: of a page that has gone it is nil.
    equal(message, '-[NSMutableDictionary setObject:forKey:]: key cannot be nil', 'what a map without a page throws');
    const other = await addMapHere();
    equal(await added(other, () => other.addOverlay(line('b'))), 'b', 'another map');
});

behaviour('coordinates of another frame are read like ones of this page', async () => {
    const frame = document.createElement('iframe');
    frame.src = 'map.html';
    document.getElementById('stage').append(frame);
    await new Promise((resolve) => frame.addEventListener('load', resolve));
    const map = await addMapHere();
    const coordinates = frame.contentWindow.Array.of(9.5, 19.5, 10.5, 20.5);
    equal(await added(map, () => map.addOverlay(line('a', { coordinates }))), 'a', 'identifiers');
});

behaviour('maps that go while their overlays are drawn leave the others working', async () => {
    const coordinates = Array.from({ length: 4e5 }, (_, i) => (i % 2 ? 20 + Math.cos(i / 1e4) : 10 + Math.sin(i / 3e4)));
    for (let i = 0; i < 5; ++i) {
        const map = await addMapHere();
        await added(map, () => map.addOverlay(line('long', { coordinates })));
        map.remove();
    }
    const map = await addMapHere();
    equal(await added(map, () => map.addOverlay(line('a'))), 'a', 'identifiers');
});

behaviour('bad overlays in a batch raise the last reason and leave the good ones', async () => {
    const map = await addMapHere();
    let message = '';
    equal(await added(map, () => {
        try {
            map.addOverlays([line('a'), line('b', { fillColor: 'f' }), null, line('c', { lineWidth: {} }), line('d')]);
        } catch (error) {
            message = error.message;
        }
    }), 'a d', 'identifiers');
    equal(message, '-[WebScriptObject floatValue]: unrecognized selector sent to instance', 'message');
});

behaviour('drawing keys of every kind leave the map working', async () => {
    const map = await addMapHere();
    const values = [0, -1, NaN, 1e9, Infinity, '3', '', true, null];
    const patterns = [[], [0, 0], [-1, 2], ['a'], [1e-9, 1e-9], [1e300, 1], { length: 3 }, 'x'.repeat(0) || [5]];
    const overlays = [];
    for (const value of values) {
        for (const lineDashPattern of patterns)
            overlays.push(line(`${overlays.length}`, { lineWidth: value, miterLimit: value, strokeOpacity: value,
                lineDashPhase: value, lineDashPattern }));
        overlays.push({ type: 'circle', id: `${overlays.length}`, latitude: 10, longitude: 20, radius: value ?? 1 });
    }
    await added(map, () => map.addOverlays(overlays));
    equal(map.overlays.length, overlays.length, 'overlays');
    map.removeOverlays(map.overlays);
    equal(await added(map, () => map.addOverlay(line('last'))), 'last', 'identifiers');
});
