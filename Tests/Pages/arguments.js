'use strict';

// Runs the script of the isolated world in a frame's own world, for a type of its own and with a host that records how
// maps are started.
async function recordStarts() {
    const text = (await (await fetch('/scripts/Surface.js')).text()).replaceAll('veyra-map', 'other-map');
    const element = document.createElement('iframe');
    document.getElementById('stage').append(element);
    const starts = [];
    const host = { progress() {}, stop() {}, layOut() {}, start: (...all) => { starts.push(all); return {}; } };
    const { find } = element.contentWindow.eval(text)(host, () => {});
    const parse = (html) => {
        element.contentDocument.body.innerHTML = html;
        find(element.contentDocument.body.firstElementChild);
    };
    return { starts, parse, document: element.contentDocument };
}

behaviour('attributes and parameters come under their names in lower case', async () => {
    const { starts, parse, document: doc } = await recordStarts();
    parse(`<object type="application/x-other-map" ID="m" data-Zoom="3" empty>
        <param name="Source" value="tiles"><param name="bare"><param value="nameless">text</object>`);
    equal(JSON.stringify(starts[0][1]), JSON.stringify(['type', 'application/x-other-map', 'id', 'm', 'data-zoom', '3',
        'empty', '', 'source', 'tiles', 'bare', '']), 'arguments');
    equal(starts[0][2], doc.baseURI, 'base URL');
    equal(starts[0][3], devicePixelRatio, 'scale');
});

behaviour('a parameter is stronger than the attribute of its name', async () => {
    const { starts, parse } = await recordStarts();
    parse('<object type="application/x-other-map" zoom="1"><param name="ZOOM" value="2"></object>');
    equal(JSON.stringify(starts[0][1]), JSON.stringify(['type', 'application/x-other-map', 'zoom', '2']), 'arguments');
});

behaviour('the base URL is that of the document with its base element', async () => {
    const { starts, parse, document: doc } = await recordStarts();
    doc.head.innerHTML = `<base href="${location.origin}/elsewhere/">`;
    parse('<object type="application/x-other-map"></object>');
    equal(starts[0][2], `${location.origin}/elsewhere/`, 'base URL');
});

behaviour('an element that the parser is still in waits for its parameters', async () => {
    const frame = document.createElement('iframe');
    document.getElementById('stage').append(frame);
    const doc = frame.contentDocument;
    doc.open();
    doc.write(`<body><object type="${mapType}"><param name="a" value="b">`);
    await turn();
    equal(doc.querySelector('veyra-surface'), null, 'while it is open');
    doc.write('<param name="c" value="d"></object><p>');
    await until(() => doc.querySelector('object > veyra-surface'), 'a surface');
    doc.close();
});
