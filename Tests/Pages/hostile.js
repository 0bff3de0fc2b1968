// Documents that turn the script engine's own objects against a map, and calls that lose it half-way. What is changed is
// a frame's, so that the next behaviour finds an ordinary page.
'use strict';

const vienna = { latitude: 48.2, longitude: 16.4, latitudeDelta: 2, longitudeDelta: 2 };

function addFrame(attack = '') {
    const element = document.createElement('iframe');
    document.getElementById('stage').append(element);
    element.contentWindow.eval(attack);
    return element;
}

// The next event of that name: its arguments.
function event(map, name) {
    return new Promise((resolve) => {
        map.listener = { [name]: (...values) => resolve(values) };
    });
}

async function worksLikeAnyMap(map) {
    const changed = event(map, 'mapRegionDidChange');
    map.setRegion(vienna, false);
    await changed;
    equal(Math.abs(map.region.latitude - vienna.latitude) < 1e-6, true, 'region');
    equal(Object.keys(map.centerCoordinate).join(), 'latitude,longitude', 'keys');
    const point = map.convertCoordinateToPoint(map.convertPointToCoordinate({ x: 12.5, y: 40 }));
    equal(Math.abs(point.x - 12.5) < 1e-3 && Math.abs(point.y - 40) < 1e-3, true, 'there and back');
    const added = event(map, 'mapDidAddOverlays');
    map.addOverlays([1, 2].map((n) => ({ type: 'circle', id: `c${n}`, latitude: 48, longitude: 16, radius: 5000 })));
    equal((await added).join(), 'c1,c2', 'identifiers');
    equal(map.overlays.length, 2, 'overlays');
    equal(map.overlays.includes('c1') && map.overlays.includes('c2'), true, 'each of them');
    const shown = event(map, 'mapDidAddViewsForAnnotations');
    map.addAnnotation({ latitude: 48.2, longitude: 16.4, identifier: 'a' });
    equal((await shown)[0][0], 'a', 'annotation');
}

const attacks = {
    'setters for indexes': `
        for (let i = 0; i < 200; ++i)
            for (const prototype of [Array.prototype, Object.prototype])
                Object.defineProperty(prototype, i,
                    { __proto__: null, get() { return 'inherited'; }, set() { window.caught = true; } });`,
    'setters for names': `
        for (const name of ['value', 'get', 'set', 'writable', 'configurable', 'enumerable', 'slots', 'latitude', 'x', 'id'])
            Object.defineProperty(Object.prototype, name, { __proto__: null, set() { window.caught = true; } });`,
    'extended prototypes': 'Object.assign(Object.prototype, { get() {}, set() {}, value: 5, writable: false });',
    'getters that throw': "Object.defineProperty(Object.prototype, 'latitude', { __proto__: null, get() { throw 1; } });",
    'frozen prototypes': `
        for (const type of [Object, Array, Function, String, Error, HTMLObjectElement, HTMLElement, Element, Node])
            Object.freeze(type.prototype);`,
    'replaced functions': `
        const fail = () => { throw new Error('called'); };
        for (const name of ['call', 'apply', 'bind', 'toString'])
            Function.prototype[name] = fail;
        Array.prototype[Symbol.iterator] = Array.prototype.push = Array.prototype.map = fail;
        JSON.stringify = Object.defineProperty = Object.getPrototypeOf = Reflect.construct = fail;
        customElements.define = customElements.get = fail;
        document.createElement = Node.prototype.appendChild = Element.prototype.append = Element.prototype.attachShadow = fail;`,
};

async function survives(attack) {
    const frame = addFrame();
    const map = makeMap(frame.contentDocument); // before document.createElement goes
    frame.contentWindow.eval(attacks[attack]);
    Node.prototype.appendChild.call(frame.contentDocument.body, map);
    await worksLikeAnyMap(map);
    equal(frame.contentWindow.caught, undefined, 'setters called');
}

behaviour('a page may put setters for indexes on prototypes', () => survives('setters for indexes'));
behaviour('a page may put setters for names on prototypes', () => survives('setters for names'));
behaviour('a page may extend prototypes', () => survives('extended prototypes'));
behaviour('a page may let inherited getters throw', () => survives('getters that throw'));
behaviour('a page may freeze prototypes', () => survives('frozen prototypes'));
behaviour('a page may replace functions', () => survives('replaced functions'));

// Each takes the map away while a key is read, and gives a map to go on with.
const losses = {
    'the element is removed': (map) => { map.remove(); return addMap(); },
    'the element moves to another document': (map) => { addFrame().contentDocument.body.append(map); return map; },
    'the element changes its type': (map) => { map.type = 'text/plain'; return addMap(); },
    'the element is removed and put back': (map) => {
        const parent = map.parentNode;
        map.remove();
        parent.append(map);
        return map;
    },
    'its frame is removed': (map) => { map.ownerDocument.defaultView.frameElement.remove(); return addMap(); },
    'its document is opened again': (map) => {
        map.ownerDocument.open();
        map.ownerDocument.write('<body></body>');
        map.ownerDocument.close();
        return addMap();
    },
    'its frame goes to another page': (map) => {
        map.ownerDocument.defaultView.location = 'blank.html';
        return addMap();
    },
};

const keys = { ...vienna, x: 5, y: 6, width: 7, height: 8, identifier: 'i', length: 1, 0: null, type: 'circle', id: 'c', radius: 9 };
const calls = {
    setRegion: 'longitude', setCenterCoordinate: 'longitude', regionThatFits: 'longitude', convertCoordinateToPoint: 'longitude',
    convertPointToCoordinate: 'y', convertRegionToRect: 'longitude', convertRectToRegion: 'height', addAnnotation: 'longitude',
    addAnnotations: 'length', removeAnnotations: '0', addOverlay: 'radius', addOverlays: 'length', removeOverlays: '0',
    insertOverlayAtIndex: 'type', insertOverlayAboveOverlay: 'id',
};

async function maybeLost(loss) {
    for (const [method, key] of Object.entries(calls)) {
        const map = addMap(addFrame().contentDocument);
        let next = null;
        const argument = { ...keys };
        Object.defineProperty(argument, key, { get() { next ??= losses[loss](map); return keys[key] ?? 1; } });
        try {
            map[method](argument, 0);
        } catch (error) {
            equal(['Error', 'TypeError', 'ReferenceError'].includes(error.name), true, `${method}: ${error}`);
        }
        equal(next !== null, true, `${method} read ${key}`);
        equal(next.mapType, 0, `a map after ${method}`);
        document.getElementById('stage').replaceChildren();
    }
    await turn();
    await worksLikeAnyMap(addMap());
}

behaviour('the element may be removed while any key is read', () => maybeLost('the element is removed'));
behaviour('the element may move to another document while any key is read',
    () => maybeLost('the element moves to another document'));
behaviour('the element may change its type while any key is read', () => maybeLost('the element changes its type'));
behaviour('the element may be removed and put back while any key is read',
    () => maybeLost('the element is removed and put back'));
behaviour('the frame may be removed while any key is read', () => maybeLost('its frame is removed'));
behaviour('the document may be opened again while any key is read', () => maybeLost('its document is opened again'));
behaviour('the frame may go to another page while any key is read', () => maybeLost('its frame goes to another page'));

behaviour('the element may be lost in any event', async () => {
    const events = ['mapRegionWillChange', 'mapRegionDidChange', 'mapDidAddOverlays', 'mapDidAddViewsForAnnotations',
        'mapDidSelectAnnotation', 'mapDidDeselectAnnotation', 'mapFailedRetrievingImageForAnnotation'];
    for (const name of events) {
        for (const loss of Object.values(losses)) {
            const map = addMap(addFrame().contentDocument);
            await event(map, 'mapRegionDidChange'); // the first layout
            let isLost = false;
            map.listener = {
                [name]() {
                    if (!isLost) {
                        isLost = true;
                        loss(map);
                    }
                },
            };
            map.setRegion({ ...vienna, longitude: -100 }, true);
            map.setRegion(vienna, false);
            map.addOverlay({ type: 'circle', id: 'c', latitude: 48.2, longitude: 16.4, radius: 5000 });
            map.addAnnotation({ ...vienna, identifier: 'a', title: 'A' });
            map.addAnnotation({ ...vienna, identifier: 'b', imageURL: 'ftp://127.0.0.1/none' });
            map.selectAnnotation('a', false);
            map.removeAnnotation('a');
            map.showsUserLocation = true;
            map.showsUserLocation = false;
            await until(() => isLost, name);
            document.getElementById('stage').replaceChildren();
        }
    }
    await worksLikeAnyMap(addMap());
});

behaviour('the last of the stack may go to frames and maps', async () => {
    let depth = 0;
    function sink() {
        ++depth;
        try {
            sink();
        } catch {
            // The next one up tries.
        }
        if (document.querySelectorAll('iframe').length > 20)
            return;
        try {
            const map = addMap(addFrame().contentDocument);
            map.setRegion(map.region, true);
            map.addAnnotations([{ ...vienna, identifier: `a${depth}` }]);
        } catch (error) {
            equal(typeof error, 'object', 'error');
        }
    }
    sink();
    equal(depth > 100, true, 'depth');
    document.getElementById('stage').replaceChildren();
    await turn();
    await worksLikeAnyMap(addMap());
});
