// Thousands of calls of everything that a map has, with whatever a page may hand over: wrong kinds, proxies, getters that
// throw or call the map, numbers that are none. The same calls in every run. The map must work in the end.
'use strict';

let seed = 12345;
const random = (n) => {
    seed = (Math.imul(seed, 1103515245) + 12345) >>> 0;
    return (seed >>> 8) % n;
};
const any = (list) => list[random(list.length)];

const keys = ['latitude', 'longitude', 'latitudeDelta', 'longitudeDelta', 'x', 'y', 'width', 'height', 'identifier', 'title', 'subtitle',
    'imageURL', 'xOffset', 'yOffset', 'pinColor', 'pinAnimatesDrop', 'draggable', 'hasLeftCalloutButton', 'type', 'id', 'radius',
    'coordinates', 'strokeColor', 'fillColor', 'strokeOpacity', 'fillOpacity', 'lineWidth', 'lineJoin', 'lineCap', 'miterLimit',
    'lineDashPhase', 'lineDashPattern', '0', '1', '2'];
const methods = ['log', 'setRegion', 'regionThatFits', 'setCenterCoordinate', 'convertCoordinateToPoint', 'convertPointToCoordinate',
    'convertRegionToRect', 'convertRectToRegion', 'addAnnotation', 'addAnnotations', 'removeAnnotation', 'removeAnnotations',
    'selectAnnotation', 'deselectAnnotation', 'addOverlay', 'addOverlays', 'removeOverlay', 'removeOverlays', 'insertOverlayAtIndex',
    'exchangeOverlays', 'insertOverlayAboveOverlay', 'insertOverlayBelowOverlay'];
const properties = ['listener', 'mapType', 'region', 'centerCoordinate', 'showsUserLocation', 'userLocationVisible', 'userLocation',
    'zoomEnabled', 'scrollEnabled', 'longPressDropsPin', 'droppedPinTitle', 'droppedPinIdentifier', 'annotations',
    'selectedAnnotations', 'overlays'];
const numbers = [0, -0, 1, -1, 0.5, 48.2, 16.4, 85, 90, 180, -180, 360, 1e6, 1e300, -1e300, NaN, Infinity, -Infinity, 2 ** 31, 2 ** 53];
const texts = ['', 'a', 'b', 'c', '12.5', ' -3e2x', 'nan', '#ff0000', '#12', 'circle', 'polyline', 'polygon', 'round', 'bevel', 'green',
    'data:,x', 'data:image/png;base64,iVBORw0KGgo=', 'no address at all', '\ud800', '\0', 'ü'.repeat(300)];

let depth = 0;

function call() {
    if (++depth > 4) {
        --depth;
        return 5;
    }
    try {
        if (random(3) === 0) {
            const name = any(properties);
            if (random(2))
                map[name] = value();
            return map[name];
        }
        return map[any(methods)](value(), value(), value());
    } catch (error) {
        if (!(error instanceof Error) && error !== 'thrown')
            throw new Error(`unexpected: ${String(error)}`);
        return String(error);
    } finally {
        --depth;
    }
}

function plain() {
    const object = {};
    const count = random(10);
    for (let i = 0; i < count; ++i)
        object[any(keys)] = random(6) ? simple() : value();
    for (const key of ['latitude', 'longitude', 'latitudeDelta', 'longitudeDelta', 'x', 'y', 'width', 'height', 'radius']) {
        if (random(2))
            object[key] = any(numbers);
    }
    if (random(2))
        object.length = random(4); // a false, huge length costs what a loop of that length would
    if (random(2)) {
        object.type = any(['circle', 'polyline', 'polygon']);
        object.id = object.identifier = any(texts);
        object.coordinates = Array.from({ length: 2 * random(4) }, () => random(9) ? any(numbers) : value());
    }
    return object;
}

function simple() {
    return any([any(numbers), any(texts), true, false, null, undefined, 10n, Symbol.iterator]);
}

function value() {
    if (depth > 3)
        return simple();
    switch (random(12)) {
    case 0: return plain();
    case 1: return new Proxy(plain(), {});
    case 2: return new Proxy({}, { get: (target, key) => key === 'length' ? random(4) : random(8) ? simple() : call() });
    case 3: return Object.defineProperty(plain(), any(keys), { get() { return call(); } });
    case 4: return Object.defineProperty(plain(), any(keys), { get() { throw 'thrown'; } });
    case 5: return Array.from({ length: random(4) }, () => random(3) ? plain() : value());
    case 6: return any([map.region, map.centerCoordinate, map.userLocation, map.annotations, map.overlays, map]);
    case 7: {
        const region = map.region;
        Object.defineProperty(region, any(['latitude', 'longitudeDelta']), { get() { return call(); } });
        return region;
    }
    case 8: return any([() => call(), class {}, new Date(0), /x/, new Float64Array(4), new Map(), globalThis, Object.create(null)]);
    case 9: {
        const { proxy, revoke } = Proxy.revocable(plain(), {});
        revoke();
        return proxy;
    }
    default: return simple();
    }
}

function round(left) {
    for (let i = 0; i < 400; ++i)
        call();
    if (left > 0) {
        requestAnimationFrame(() => round(left - 1));
        return;
    }
    map.removeAnnotations(map.annotations);
    map.removeOverlays(map.overlays);
    map.listener = {
        mapRegionDidChange(region) {
            if (Math.abs(region.latitude - 10) < 1e-6) {
                console.log('the map works');
                close();
            }
        },
    };
    map.setRegion({ latitude: 10, longitude: 20, latitudeDelta: 5, longitudeDelta: 5 });
}

round(20);
