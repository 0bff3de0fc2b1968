// What every page may rely on, whatever host runs it: annotations. A plain script, as surface.js is.
//
// runAnnotationConformance(map, report) checks a map without annotations that nobody else uses meanwhile, and leaves it so.
// Like runSurfaceConformance it reports each check and returns a promise that never rejects.

function runAnnotationConformance(map, report) {
    'use strict';

    const show = value => JSON.stringify(value) || String(value);
    const same = (name, found, expected) => {
        const passed = show(found) === show(expected);
        report(name, passed, passed ? '' : show(found) + ' instead of ' + show(expected));
    };
    const messageOf = body => {
        try {
            body();
        } catch (error) {
            return error.message;
        }
        return 'nothing thrown';
    };
    const pin = (identifier, more) => ({ latitude: 10, longitude: 20, identifier, ...more });
    const smallImage = 'data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==';

    // Calls `request` and waits until the events about annotations are those, or until it is clear that they are not.
    const events = (request, count) => new Promise(resolve => {
        const seen = [];
        let patience;
        const end = () => {
            map.listener = null;
            clearTimeout(patience);
            resolve(seen);
        };
        const wait = () => {
            clearTimeout(patience);
            patience = setTimeout(end, seen.length < count ? 5000 : 60);
        };
        map.listener = new Proxy({}, {
            get: (target, name) => (...values) => {
                if (!/Annotation/.test(name))
                    return;
                seen.push([name, ...values]);
                wait();
            },
        });
        request();
        wait();
    });

    // What is added and removed is listed a moment later. Waits until `holds`, for five seconds at most.
    async function until(holds) {
        for (let i = 0; i < 500 && !holds(); ++i)
            await new Promise(resolve => setTimeout(resolve, 10));
        return holds();
    }

    async function checkAdding() {
        same('a map has no annotations', [map.annotations, map.selectedAnnotations], [[], []]);
        same('an added annotation is reported with its view', await events(() => map.addAnnotation(pin('a')), 1),
            [['mapDidAddViewsForAnnotations', ['a']]]);
        same('an annotation on the map is listed', map.annotations, ['a']);
        same('a batch is reported at once in its order',
            await events(() => map.addAnnotations([pin('d'), pin('b'), pin('c')]), 1),
            [['mapDidAddViewsForAnnotations', ['d', 'b', 'c']]]);
        same('all are listed', map.annotations.sort(), ['a', 'b', 'c', 'd']);
        same('an identifier that is taken adds nothing', await events(() => map.addAnnotation(pin('a')), 0), []);
        let message;
        same('the good elements of a batch are added', await events(() => {
            message = messageOf(() => map.addAnnotations([pin('e'), pin(6), null, pin('g')]));
        }, 1), [['mapDidAddViewsForAnnotations', ['e', 'g']]]);
        same('the last bad one is the error', message, "Null object passed to 'addAnnotations'");
        same('what lies elsewhere has no view', await events(
            () => map.addAnnotation({ latitude: -60, longitude: -150, identifier: 'far' }), 0), []);
        same('but it is listed', await until(() => map.annotations.includes('far')), true);
    }

    async function checkSelecting() {
        same('a selection is reported', await events(() => map.selectAnnotation('a', false), 1),
            [['mapDidSelectAnnotation', 'a']]);
        same('the selected one is listed', map.selectedAnnotations, ['a']);
        same('selecting another deselects the first', await events(() => map.selectAnnotation('b', false), 2),
            [['mapDidDeselectAnnotation', 'a'], ['mapDidSelectAnnotation', 'b']]);
        same('selecting the selected one reports nothing', await events(() => map.selectAnnotation('b', false), 0), []);
        same('a deselection is reported', await events(() => map.deselectAnnotation('b', false), 1),
            [['mapDidDeselectAnnotation', 'b']]);
        same('nothing is listed then', map.selectedAnnotations, []);
        same('what has no view is not selected', await events(() => map.selectAnnotation('far', false), 0), []);
        same('adding and selecting work in one turn', await events(() => {
            map.addAnnotation(pin('new'));
            map.selectAnnotation('new', false);
        }, 2), [['mapDidAddViewsForAnnotations', ['new']], ['mapDidSelectAnnotation', 'new']]);
        same('removing the selected one deselects it', await events(() => map.removeAnnotation('new'), 1),
            [['mapDidDeselectAnnotation', 'new']]);
        same('and takes it off both lists', [map.annotations.includes('new'), map.selectedAnnotations], [false, []]);
    }

    async function checkImages() {
        same('an image in its own address is shown', await events(
            () => map.addAnnotation(pin('image', { imageURL: smallImage })), 1),
            [['mapDidAddViewsForAnnotations', ['image']]]);
        same('what is no address is reported with its number', await events(
            () => map.addAnnotation(pin('none', { imageURL: 'http://[broken' })), 1),
            [['mapFailedRetrievingImageForAnnotation', 'none', -1000, 'nil URL']]);
        same('and its annotation never shown', map.annotations.includes('none'), false);
        same('what cannot be loaded is reported and shown as a pin', await events(
            () => map.addAnnotation(pin('pin', { imageURL: 'ftp://127.0.0.1/pin.png' })), 2),
            [['mapFailedRetrievingImageForAnnotation', 'pin', -1002, 'ftp://127.0.0.1/pin.png'],
                ['mapDidAddViewsForAnnotations', ['pin']]]);
        same('data that is no image keeps its annotation waiting without an event', await events(
            () => map.addAnnotation(pin('text', { imageURL: 'data:,text' })), 0), []);
        same('and off the list', map.annotations.includes('text'), false);
    }

    async function checkRemoving() {
        await events(() => {
            map.removeAnnotation('a');
            map.removeAnnotations(['b', 'unknown', null, 5, 'c']);
        }, 0);
        same('what is removed is listed no more', await until(() => !map.annotations.some(name => 'abc'.includes(name))), true);
        await events(() => map.removeAnnotations(map.annotations), 0);
        same('everything can be removed', await until(() => map.annotations.length === 0), true);
    }

    return (async () => {
        await events(() => map.setRegion({ latitude: 10, longitude: 20, latitudeDelta: 4, longitudeDelta: 4 }), 0);
        for (const part of [checkAdding, checkSelecting, checkImages, checkRemoving]) {
            try {
                await part();
            } catch (error) {
                report(part.name + ' ran to its end', false, String(error));
            }
        }
        map.listener = null;
    })();
}
