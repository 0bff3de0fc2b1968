// What every page may rely on, whatever host runs it: the scripting surface of a map. A plain script without modules or a
// document, so that it runs in a page as well as in a bare script context.
//
// runSurfaceConformance(map, GeoMap, report) checks a map that nobody else uses meanwhile, calls report(name, passed, detail)
// once for each check, and returns a promise that is fulfilled when all are done. It never rejects. The host runs its queues
// meanwhile: the checks of events wait for them. The map is left without a listener.

function runSurfaceConformance(map, GeoMap, report) {
    'use strict';

    const properties = ['listener', 'mapType', 'region', 'centerCoordinate', 'showsUserLocation', 'userLocationVisible',
        'userLocation', 'zoomEnabled', 'scrollEnabled', 'longPressDropsPin', 'droppedPinTitle', 'droppedPinIdentifier',
        'annotations', 'selectedAnnotations', 'overlays'];
    const methods = ['log', 'setRegion', 'regionThatFits', 'setCenterCoordinate', 'convertCoordinateToPoint',
        'convertPointToCoordinate', 'convertRegionToRect', 'convertRectToRegion', 'addAnnotation', 'addAnnotations',
        'removeAnnotation', 'removeAnnotations', 'selectAnnotation', 'deselectAnnotation', 'addOverlay', 'addOverlays',
        'removeOverlay', 'removeOverlays', 'insertOverlayAtIndex', 'exchangeOverlays', 'insertOverlayAboveOverlay',
        'insertOverlayBelowOverlay'];
    const hidden = ['lock', 'mapView', 'delegate', 'jsListener', 'allow', 'deny', 'denyOnlyThisRequest', 'shouldClearCache',
        'setMapType', 'setListener', 'setZoomEnabled', 'internalMapType', 'coordinateRegion', 'visibleMapRect', 'boundsSize',
        'mapAnnotations', 'overlaysById', 'pluginArguments', 'screenScale', 'verboseDebugLoggingEnabled',
        'webPlugInInitialize', 'webPlugInDestroy', 'objectForWebScript', 'superview', 'layoutSubviews', 'attributeKeys',
        'scriptingKeys', 'valueForKey', 'setRegion:animated:'];
    const constants = {
        kVeyraTypeStandard: 0, kVeyraTypeSatellite: 1, kVeyraTypeHybrid: 2, kVeyraUserLocationUnusableError: 0,
        kVeyraUserLocationDeniedError: -1, kVeyraAnnotationURIInvalid: -1000,
    };

    // Tools.

    const show = value => {
        try {
            return typeof value === 'string' ? value : JSON.stringify(value) || String(value);
        } catch (error) {
            return String(value);
        }
    };
    const check = (name, body) => {
        let detail = '';
        let passed = false;
        try {
            const found = body();
            passed = found === true;
            detail = passed ? '' : show(found);
        } catch (error) {
            detail = 'threw ' + error;
        }
        report(name, passed, detail);
    };
    // True, or what was found instead.
    const same = (found, expected) => Object.is(found, expected) || show(found) + ' instead of ' + show(expected);
    const sameJSON = (found, expected) => same(JSON.stringify(found), JSON.stringify(expected));
    const near = (found, expected, tolerance) =>
        Math.abs(found - expected) <= tolerance || found + ' instead of ' + expected;
    const every = (list, test) => {
        for (const entry of list) {
            const found = test(entry);
            if (found !== true)
                return show(entry) + ': ' + show(found);
        }
        return true;
    };
    const thrownBy = body => {
        try {
            body();
        } catch (error) {
            return error;
        }
        return undefined;
    };
    const raises = (body, message) => {
        const error = thrownBy(body);
        if (error === undefined)
            return 'nothing thrown';
        return error.name === 'Error' && error instanceof Error ? same(error.message, message) : 'threw ' + error;
    };
    const descriptorOf = name => {
        for (let object = map; object; object = Object.getPrototypeOf(object)) {
            const found = Object.getOwnPropertyDescriptor(object, name);
            if (found)
                return found;
        }
        return undefined;
    };
    const missing = (caller, ...keys) =>
        "Object passed to '" + caller + "' does not contain keys (\n    " + keys.join(',\n    ') + '\n)';

    const regionKeys = ['latitude', 'longitude', 'latitudeDelta', 'longitudeDelta'];
    const objectMethods = {
        setRegion: regionKeys,
        setCenterCoordinate: ['latitude', 'longitude'],
        regionThatFits: regionKeys,
        convertCoordinateToPoint: ['latitude', 'longitude'],
        convertPointToCoordinate: ['x', 'y'],
        convertRegionToRect: regionKeys,
        convertRectToRegion: ['x', 'y', 'width', 'height'],
        addAnnotation: ['latitude', 'longitude', 'identifier'],
        addAnnotations: ['length'],
        removeAnnotations: ['length'],
        addOverlays: ['length'],
        removeOverlays: ['length'],
    };
    const overlayMethods = ['addOverlay', 'insertOverlayAtIndex', 'insertOverlayAboveOverlay', 'insertOverlayBelowOverlay'];

    // The parts of the suite, in the order in which they run.

    function checkNames() {
        check('all fifteen properties are there', () => every(properties, name => name in map));
        check('all twenty-two methods are there', () => every(methods, name => same(typeof map[name], 'function')));
        check('hidden names are undefined', () => every(hidden, name => same(typeof map[name], 'undefined')));
        check('calling a hidden name is a TypeError',
            () => every(['allow', 'deny', 'setMapType'], name => thrownBy(() => map[name]()) instanceof TypeError));
        check('names are not enumerable', () => {
            const ours = new Set([...properties, ...methods]);
            for (const name in map)
                if (ours.has(name))
                    return name;
            return every(Object.keys(map), name => !ours.has(name));
        });
        check('properties are accessors', () => every(properties, name => {
            const found = descriptorOf(name);
            return sameJSON([typeof found.get, typeof found.set, found.enumerable, found.configurable],
                ['function', 'function', false, true]);
        }));
        check('methods are ordinary functions', () => every(methods, name => {
            const found = descriptorOf(name);
            return sameJSON([typeof found.value, found.writable, found.enumerable, found.configurable],
                ['function', true, false, true]);
        }));
        check('methods keep their identity', () => every(methods, name => map[name] === map[name]));
        check('methods called on what is no map are TypeErrors', () => every(methods, name =>
            every([{}, [], 5, 'text'], target => thrownBy(() => map[name].call(target, {})) instanceof TypeError)));
        check('a property read on what is no map is undefined',
            () => every(properties, name => same(descriptorOf(name).get.call({}), undefined)));
        check('other properties of the object are its own affair', () => {
            map.somethingElse = 5;
            const found = map.somethingElse;
            delete map.somethingElse;
            return found === 5 && !('somethingElse' in map);
        });
    }

    function checkDefaults() {
        const defaults = {
            listener: null, mapType: 0, showsUserLocation: false, userLocationVisible: false, zoomEnabled: true,
            scrollEnabled: true, longPressDropsPin: false, droppedPinTitle: 'dropped-pin-id',
            droppedPinIdentifier: 'dropped-pin-id',
        };
        for (const name of Object.keys(defaults))
            check('default of ' + name, () => same(map[name], defaults[name]));
        for (const name of ['annotations', 'selectedAnnotations', 'overlays'])
            check(name + ' is an empty array', () => Array.isArray(map[name]) && sameJSON(map[name], []));
        check('the user location is all zeros', () => sameJSON(map.userLocation,
            { latitude: 0, longitude: 0, altitude: 0, horizontalAccuracy: 0, verticalAccuracy: 0 }));
        check('region and centre have their keys', () => sameJSON(
            [Object.keys(map.region), Object.keys(map.centerCoordinate)], [regionKeys, ['latitude', 'longitude']]));
        check('reading gives new arrays and objects', () => every(
            ['region', 'centerCoordinate', 'userLocation', 'annotations', 'selectedAnnotations', 'overlays'],
            name => map[name] !== map[name]));
    }

    function checkGeoMap() {
        check('GeoMap has its six constants in order',
            () => sameJSON(Object.entries(GeoMap), Object.entries(constants)));
        check('GeoMap is the global of that name', () => same(globalThis.GeoMap, GeoMap));
        check('constants are read-only', () => every(Object.keys(constants), name => {
            const error = thrownBy(() => { GeoMap[name] = 99; });
            return error instanceof TypeError && same(GeoMap[name], constants[name]);
        }));
        check('the global GeoMap may be replaced and deleted', () => {
            const found = Object.getOwnPropertyDescriptor(globalThis, 'GeoMap');
            return found.writable && found.enumerable && found.configurable;
        });
    }

    function checkSettings() {
        const reads = (name, value) => {
            map[name] = value;
            return map[name];
        };
        check('settings read back at once', () => sameJSON(
            [reads('mapType', 2), reads('zoomEnabled', false), reads('scrollEnabled', false),
                reads('longPressDropsPin', true), reads('droppedPinIdentifier', 'mine')],
            [2, false, false, true, 'mine']));
        check('the title of dropped pins reads as their identifier', () => same(reads('droppedPinTitle', 'Title'), 'mine'));
        check('map types out of range are ignored', () => every([3, -1, 1e10, -1e10, Infinity],
            type => same((map.mapType = 2, reads('mapType', type)), 2)));
        check('map types truncate', () => sameJSON([reads('mapType', 1.5), reads('mapType', 2.9)], [1, 2]));
        check('what is no number is the standard map', () => every(['1', {}, [], null, undefined, NaN],
            type => same((map.mapType = 2, reads('mapType', type)), 0)));
        check('switches take truthiness', () => every(['zoomEnabled', 'scrollEnabled', 'longPressDropsPin'], name =>
            sameJSON([reads(name, 1), reads(name, ''), reads(name, {}), reads(name, 0), reads(name, 'false')],
                [true, false, true, false, true])));
        check('strings come back unit for unit', () => every(['', 'ü€\u{1f600}', '\ud800', 'x\udc00y', 'nul\0nul'],
            text => same(reads('droppedPinIdentifier', text), text)));
        map.mapType = 0;
        map.zoomEnabled = map.scrollEnabled = true;
        map.longPressDropsPin = false;
        map.droppedPinIdentifier = 'dropped-pin-id';
    }

    function checkReadOnly() {
        const names = ['annotations', 'selectedAnnotations', 'overlays', 'userLocation', 'userLocationVisible'];
        for (const name of names)
            check('assigning to ' + name + ' changes nothing', () => every([['a'], null, undefined, true, {}, 5], value => {
                const before = JSON.stringify(map[name]);
                map[name] = value;
                return same(JSON.stringify(map[name]), before);
            }));
    }

    function checkListener() {
        check('the listener reads back as the object assigned', () => every([{}, [], () => 1, new Date()], listener => {
            map.listener = listener;
            return map.listener === listener;
        }));
        check('a listener that is no object reads back', () => every([5, 'text', true, null], listener => {
            map.listener = listener;
            return same(map.listener, listener);
        }));
        map.listener = null;
    }

    function checkBadInput() {
        for (const name of Object.keys(objectMethods)) {
            check(name + ' refuses null', () => raises(() => map[name](null), "Null object passed to '" + name + "'"));
            check(name + ' refuses what is no object', () => every([undefined, 5, true, 'text', Symbol('s')],
                value => raises(() => map[name](value), "Invalid object passed to '" + name + "'")));
            check(name + ' refuses a missing argument',
                () => raises(() => map[name](), "Invalid object passed to '" + name + "'"));
            check(name + ' names the missing keys',
                () => raises(() => map[name]({}), missing(name, ...objectMethods[name])));
        }
        for (const name of overlayMethods) {
            check(name + ' refuses null', () => raises(() => map[name](null, 0), "Null object passed to 'Creating overlay'"));
            check(name + ' refuses what is no object', () => every([undefined, 5, 'text'],
                value => raises(() => map[name](value, 0), "Invalid object passed to 'Creating overlay'")));
            check(name + ' names the missing keys', () => raises(() => map[name]({}, 0), missing('Creating overlay', 'type', 'id')));
            check(name + ' names the missing keys of a circle', () => raises(
                () => map[name]({ type: 'circle', id: 'x', longitude: 1 }, 0),
                missing('Constructing circle', 'latitude', 'radius')));
            for (const type of ['polyline', 'polygon']) {
                check(name + ' names the missing key of a ' + type, () => raises(() => map[name]({ type, id: 'x' }, 0),
                    missing('Constructing ' + type, 'coordinates')));
                check(name + ' refuses half a coordinate of a ' + type, () => raises(
                    () => map[name]({ type, id: 'x', coordinates: [1, 2, 3] }, 0),
                    'Constructing ' + type + ', number of values in coordinates array must be even'));
            }
            check(name + ' is silent about an unknown type', () => same(map[name]({ type: 'Circle', id: 'x' }, 0), undefined));
        }
        check('an assigned region is refused without a name', () => raises(() => { map.region = null; },
            "Null object passed to '(null)'"));
        check('an assigned centre is refused without a name', () => raises(() => { map.centerCoordinate = { latitude: 1 }; },
            missing('(null)', 'longitude')));
        check('annotation identifiers must be strings', () => every([5, true, {}], identifier => raises(
            () => map.addAnnotation({ latitude: 1, longitude: 2, identifier }),
            'Annotation identifiers must be of type string')));
        check('a batch raises its last fault', () => raises(
            () => map.addAnnotations([{ latitude: 1, longitude: 2, identifier: 3 }, null, 'text']),
            "Invalid object passed to 'addAnnotations'"));
        check('indexes must be numbers', () => raises(() => map.exchangeOverlays('0', 1),
            '-[NSString unsignedIntegerValue]: unrecognized selector sent to instance'));
        check('null keys are missing', () => raises(() => map.setCenterCoordinate({ latitude: null, longitude: 0 }),
            missing('setCenterCoordinate', 'latitude')));
        check('unknown identifiers are accepted in silence', () => every(
            ['removeAnnotation', 'selectAnnotation', 'deselectAnnotation', 'removeOverlay'],
            name => same(map[name]('no such identifier', false), undefined)));
        check('nothing was added by what was refused',
            () => sameJSON([map.annotations, map.selectedAnnotations, map.overlays], [[], [], []]));
    }

    function checkValueObjects() {
        check('value objects spread', () => sameJSON(Object.keys({ ...map.region }), regionKeys));
        check('value objects enumerate their keys', () => {
            const names = [];
            for (const name in map.centerCoordinate)
                names.push(name);
            return sameJSON(names, ['latitude', 'longitude']);
        });
        check('value objects are written like any other', () => {
            const region = map.region;
            region.latitude = 1.5;
            region.longitude = -2;
            region.latitudeDelta = 0.25;
            region.longitudeDelta = 3;
            return sameJSON(region, { latitude: 1.5, longitude: -2, latitudeDelta: 0.25, longitudeDelta: 3 });
        });
        check('regions have their text', () => {
            const region = Object.assign(map.region, { latitude: 1, longitude: 2, latitudeDelta: 3, longitudeDelta: 4 });
            return same(String(region),
                "{'latitude':1.000000,'longitude':2.000000,'latitudeDelta':3.000000,'longitudeDelta':4.000000}");
        });
        check('coordinates have their text', () => {
            const coordinate = Object.assign(map.centerCoordinate, { latitude: -1.5, longitude: 2 });
            return same(String(coordinate), "{'latitude':-1.500000,'longitude':2.000000}");
        });
        check('other value objects are named by their class', () => same(String(map.userLocation), 'VeyraUserLocationSO'));
        check('a value object of another kind is refused', () => raises(() => map.setCenterCoordinate(map.region),
            "Invalid object passed to 'setCenterCoordinate'"));
        check('log takes anything', () => every(['conformance', 5, null, {}, map.region], value => same(map.log(value), undefined)));
    }

    function checkHostileReads() {
        check('keys are read for the check and then for their values', () => {
            const reads = [];
            map.convertPointToCoordinate(new Proxy({}, { get(target, key) { reads.push(key); return 1; } }));
            return same(reads.join(), 'x,y,x,y');
        });
        check('a getter may call the map', () => {
            let inner;
            map.convertPointToCoordinate({
                get x() {
                    inner = thrownBy(() => map.regionThatFits(null));
                    return 1;
                },
                y: 1,
            });
            return same(inner.message, "Null object passed to 'regionThatFits'");
        });
        check('a length that is no number counts as zero', () => every(['3', {}, NaN, 0], length => {
            let reads = 0;
            map.addAnnotations({ length, get 0() { ++reads; return null; } });
            return same(reads, 0);
        }));
    }

    // Waits for the event with which a request ends: the did-change of a region around that centre. What was noted meanwhile.
    const change = (latitude, longitude, request) => new Promise(resolve => {
        const events = [];
        map.listener = new Proxy({}, {
            get: (target, name) => function (...values) {
                if (name !== 'mapRegionWillChange' && name !== 'mapRegionDidChange')
                    return;
                events.push({ name, values, isCalledOnTheListener: this === map.listener });
                if (name === 'mapRegionDidChange' && near(values[0].latitude, latitude, 1e-6) === true &&
                    near(values[0].longitude, longitude, 1e-6) === true)
                    resolve(events);
            },
        });
        request();
    });

    async function checkEvents() {
        await change(40, -75, () => map.setRegion({ latitude: 40, longitude: -75, latitudeDelta: 4, longitudeDelta: 4 }));
        const events = await change(48.2, 16.4,
            () => map.setRegion({ latitude: 48.2, longitude: 16.4, latitudeDelta: 2, longitudeDelta: 2 }));
        check('will-change comes before did-change',
            () => sameJSON(events.map(event => event.name), ['mapRegionWillChange', 'mapRegionDidChange']));
        check('will-change has no arguments', () => same(events[0].values.length, 0));
        check('did-change has the region', () => same(events[1].values.length, 1) &&
            sameJSON(events[1].values[0], map.region));
        check('events are called on the listener', () => every(events, event => event.isCalledOnTheListener));
        check('the centre is that of the region', () => same(map.centerCoordinate.latitude, map.region.latitude) &&
            same(map.centerCoordinate.longitude, map.region.longitude));
        check('the whole request is visible', () => map.region.latitudeDelta >= 2 - 1e-6 &&
            map.region.longitudeDelta >= 2 - 1e-6 || JSON.stringify(map.region));
        await change(-12, -77, () => { map.centerCoordinate = { latitude: -12, longitude: -77 }; });
        check('an assigned centre is shown', () => near(map.region.latitude, -12, 1e-6));
        await change(35, 139, () => { map.region = { latitude: 35, longitude: 139, latitudeDelta: 1, longitudeDelta: 1 }; });
        check('an assigned region is shown', () => near(map.centerCoordinate.longitude, 139, 1e-6));
        await change(10, 20, () => map.setCenterCoordinate({ latitude: '10', longitude: '20E' }));
        check('strings count by their leading number', () => near(map.region.longitude, 20, 1e-6));
        map.listener = null;
    }

    function checkConversions() {
        const size = map.convertRegionToRect(map.region).width;
        check('coordinates come back from points', () => {
            const place = { latitude: map.region.latitude + 0.1, longitude: map.region.longitude - 0.1 };
            const found = map.convertPointToCoordinate(map.convertCoordinateToPoint(place));
            return near(found.latitude, place.latitude, 1e-4) && near(found.longitude, place.longitude, 1e-4);
        });
        check('points come back from coordinates', () => {
            const found = map.convertCoordinateToPoint(map.convertPointToCoordinate({ x: 12.5, y: 40 }));
            const x = near(found.x, 12.5, 1e-3);
            return x === true ? near(found.y, 40, 1e-3) : x;
        });
        check('the centre lies in the middle of the view', () =>
            near(map.convertCoordinateToPoint(map.centerCoordinate).x, size / 2, 1e-3));
        check('x grows eastward and y southward', () => {
            const center = map.centerCoordinate;
            const point = map.convertCoordinateToPoint(center);
            const moved = map.convertCoordinateToPoint({ latitude: center.latitude - 0.1, longitude: center.longitude + 0.1 });
            return moved.x > point.x && moved.y > point.y;
        });
        check('the rectangle of a region has the height zero', () => same(map.convertRegionToRect(map.region).height, 0));
        check('rectangles become regions', () => {
            const corner = map.convertPointToCoordinate({ x: 0, y: 0 });
            const region = map.convertRectToRegion({ x: 0, y: 0, width: 50, height: 40 });
            return near(region.longitude - region.longitudeDelta / 2, corner.longitude, 1e-6);
        });
        check('a region that the map shows fits itself', () => {
            const region = map.region;
            const fitting = map.regionThatFits(region);
            return every(regionKeys, key => near(fitting[key], region[key], 1e-6));
        });
        check('results have their keys', () => sameJSON(
            [map.convertCoordinateToPoint(map.centerCoordinate), map.convertRegionToRect(map.region)].map(Object.keys),
            [['x', 'y'], ['x', 'y', 'width', 'height']]));
        check('points are taken in single precision', () => {
            const found = map.convertPointToCoordinate({ x: 0.1, y: 0.1 });
            return sameJSON(found, map.convertPointToCoordinate({ x: Math.fround(0.1), y: Math.fround(0.1) }));
        });
    }

    // What is drawn is for other tests; this is what a script sees of it.
    async function checkOverlays() {
        const line = (id, more) => ({ type: 'polyline', id, coordinates: [10, 20, 10.1, '20.1'], ...more });
        const shown = add => new Promise(resolve => {
            map.listener = { mapDidAddOverlays(...identifiers) { resolve(identifiers); } };
            add();
        });
        const together = await shown(() =>
            map.addOverlays([line('a'), { type: 'Circle', id: 'c' }, line('b'), line('b'), line(4)]));
        check('overlays of one call are one event, an argument each', () => sameJSON(together, ['a', 'b', 4]));
        const below = await shown(() =>
            map.insertOverlayAtIndex({ type: 'circle', id: 'd', latitude: 10, longitude: 20, radius: 500 }, 0));
        check('an overlay is reported once', () => sameJSON(below, ['d']));
        check('overlays are identifiers', () => sameJSON(map.overlays.map(String).sort(), ['4', 'a', 'b', 'd']));
        check('a bad element of a batch does not stop it', () => {
            const raised = raises(() => map.addOverlays([line('e'), line('f', { strokeColor: 'red' }), line('g')]),
                '-[NSString substringWithRange:]: Range {2, 2} out of bounds; string length 3');
            return raised === true ? sameJSON(map.overlays.filter(id => 'efg'.includes(id)).sort(), ['e', 'g']) : raised;
        });
        check('an overlay beside an unknown one is registered', () => {
            map.insertOverlayAboveOverlay(line('h'), 'no such overlay');
            return same(map.overlays.includes('h'), true);
        });
        check('each coordinate is read once and in order', () => {
            const reads = [];
            const coordinates = new Proxy([1, '2', 3, 4], {
                get(target, key) {
                    reads.push(key);
                    return target[key];
                },
            });
            map.addOverlay(line('i', { coordinates }));
            return sameJSON(reads, ['length', '0', '1', '2', '3']);
        });
        check('what is no number among coordinates raises', () => raises(
            () => map.addOverlay(line('j', { coordinates: [1, 2, undefined, 4] })),
            '-[WebUndefined doubleValue]: unrecognized selector sent to instance'));
        check('a false length takes nothing', () => raises(
            () => map.addOverlay(line('j', { coordinates: { length: 4294967294 } })),
            '-[WebUndefined doubleValue]: unrecognized selector sent to instance'));
        check('overlays are taken away by identifier', () => {
            map.removeOverlays(map.overlays);
            return same(map.overlays.length, 0);
        });
        map.listener = null;
    }

    return (async () => {
        const parts = [checkNames, checkDefaults, checkGeoMap, checkSettings, checkReadOnly, checkListener, checkBadInput,
            checkValueObjects, checkHostileReads, checkEvents, checkConversions, checkOverlays];
        for (const part of parts) {
            try {
                await part();
            } catch (error) {
                report(part.name + ' ran to its end', false, String(error));
            }
        }
        map.listener = null;
    })();
}
