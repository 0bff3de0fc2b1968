'use strict';

function addFrame(attributes = {}) {
    const element = document.createElement('iframe');
    for (const [name, value] of Object.entries(attributes))
        element.setAttribute(name, value);
    document.getElementById('stage').append(element);
    return element;
}

behaviour('maps work in an empty frame', () => {
    const map = addMap(addFrame().contentDocument);
    equal(map.mapType, 0, 'mapType');
});

behaviour('maps work in a frame with its own text', async () => {
    const element = document.createElement('iframe');
    await loaded(element, () => {
        element.srcdoc = `<object id="m" type="${mapType}"></object><script>result = typeof m.mapType</script>`;
        document.getElementById('stage').append(element);
    });
    equal(element.contentWindow.result, 'number', 'in the frame');
    equal(element.contentDocument.getElementById('m').mapType, 0, 'from outside');
});

behaviour('maps work in a frame that loads a page', async () => {
    const element = document.createElement('iframe');
    await loaded(element, () => {
        element.src = 'element.html';
        document.getElementById('stage').append(element);
    });
    equal(element.contentWindow.eval('typeOfMapTypeWhileParsing'), 'number', 'in the frame');
    await until(() => element.contentDocument.querySelector('#untouched > veyra-surface'), 'the untouched one');
});

behaviour('maps work in sandboxed frames and data addresses', async () => {
    const text = `<object id="m" type="${mapType}"></object><script>parent.postMessage(typeof m.mapType, '*')</script>`;
    for (const attributes of [{ sandbox: 'allow-scripts', srcdoc: text }, { src: `data:text/html,${encodeURIComponent(text)}` }]) {
        const answer = new Promise((resolve) => addEventListener('message', resolve, { once: true }));
        addFrame(attributes);
        equal((await answer).data, 'number', Object.keys(attributes)[0]);
    }
});

behaviour('a frame that may run no scripts does no harm', async () => {
    const element = document.createElement('iframe');
    element.setAttribute('sandbox', 'allow-same-origin');
    await loaded(element, () => {
        element.srcdoc = `<object id="m" type="${mapType}"></object>`;
        document.getElementById('stage').append(element);
    });
    equal(element.contentDocument.getElementById('m').mapType, undefined, 'no map in it');
    element.remove();
    equal(addMap().mapType, 0, 'a map of this page');
});

behaviour('a removed frame ends its maps', async () => {
    const element = addFrame();
    const map = addMap(element.contentDocument);
    equal(map.mapType, 0, 'before');
    element.remove();
    await turn();
    throws(() => map.mapType, 'ReferenceError', 'read');
    throws(() => map.log('x'), 'ReferenceError', 'call');
});

behaviour('a frame that goes to another page ends its maps', async () => {
    const element = document.createElement('iframe');
    await loaded(element, () => {
        element.src = 'blank.html';
        document.getElementById('stage').append(element);
    });
    const map = addMap(element.contentDocument);
    equal(map.mapType, 0, 'before');
    await loaded(element, () => { element.src = 'blank.html?again'; });
    await turn();
    throws(() => map.mapType, 'ReferenceError', 'read');
    equal(addMap(element.contentDocument).mapType, 0, 'a map of the new page');
});

behaviour('the page may use the map while it leaves', async () => {
    const element = document.createElement('iframe');
    await loaded(element, () => {
        element.src = 'blank.html';
        document.getElementById('stage').append(element);
    });
    const map = addMap(element.contentDocument);
    map.mapType = 2;
    let seen;
    element.contentWindow.addEventListener('pagehide', () => { seen = map.mapType; });
    element.remove();
    equal(seen, 2, 'mapType in pagehide');
});

behaviour('moved to another document it has a new map there', async () => {
    const element = addFrame();
    const map = addMap();
    map.mapType = 1;
    element.contentDocument.body.append(map);
    equal(map.ownerDocument, element.contentDocument, 'document');
    equal(map.mapType, 0, 'there');
    map.mapType = 2;
    document.getElementById('stage').append(map);
    equal(map.mapType, 0, 'and back');
    equal(map.querySelectorAll('veyra-surface').length, 1, 'surfaces');
    element.remove();
    await turn();
    equal(map.mapType, 0, 'after the frame has gone');
});

behaviour('elements of another document move in without being touched', async () => {
    const element = addFrame();
    const map = makeMap(element.contentDocument);
    document.getElementById('stage').append(map);
    await until(() => map.querySelector('veyra-surface'), 'a surface');
    equal(map.mapType, 0, 'mapType');
});

behaviour('document open ends the old maps and serves new ones', async () => {
    const element = addFrame();
    const doc = element.contentDocument;
    const map = addMap(doc);
    map.mapType = 1;
    doc.open();
    doc.write(`<body><object id="m" type="${mapType}"></object><object id="n" type="${mapType}"></object>`);
    doc.close();
    equal(map.mapType, undefined, 'the old one');
    const fresh = doc.getElementById('m');
    equal(fresh.mapType, 0, 'the new one');
    await until(() => doc.querySelector('#n > veyra-surface'), 'the untouched one');
    fresh.remove();
    equal(fresh.mapType, undefined, 'removed');
    element.remove();
    await turn();
    throws(() => doc.getElementById('n').mapType, 'ReferenceError', 'after the frame has gone');
});

behaviour('a document without a window has no maps', () => {
    const doc = document.implementation.createHTMLDocument('');
    const map = makeMap(doc);
    doc.body.append(map);
    equal(map.mapType, undefined, 'mapType');
    equal(map.querySelector('veyra-surface'), null, 'surface');
});

behaviour('a template holds no maps until it is used', async () => {
    const template = document.createElement('template');
    template.innerHTML = `<object type="${mapType}"></object>`;
    document.getElementById('stage').append(template);
    const inert = template.content.firstElementChild;
    equal(inert.mapType, undefined, 'in the template');
    const copy = document.importNode(template.content, true).firstElementChild;
    document.getElementById('stage').append(copy);
    equal(copy.mapType, 0, 'in the document');
});

behaviour('innerHTML makes maps', async () => {
    const stage = document.getElementById('stage');
    stage.innerHTML = `<div><object id="fresh" type="${mapType}"></object></div>`;
    equal(document.getElementById('fresh').mapType, 0, 'touched');
    await turn();
    const again = stage.innerHTML;
    stage.innerHTML = again;
    equal(document.getElementById('fresh').mapType, 0, 'from the text of another');
    equal(document.querySelectorAll('#fresh veyra-surface').length, 1, 'surfaces');
});
