'use strict';

async function shownMap() {
    const map = addMap();
    equal(map.mapType, 0, 'mapType');
    await turn();
    await frame();
    return map;
}

behaviour('the shadow tree is closed', async () => {
    const surface = (await shownMap()).firstElementChild;
    equal(surface.localName, 'veyra-surface', 'surface');
    equal(surface.shadowRoot, null, 'shadowRoot');
    throws(() => surface.attachInternals(), 'NotSupportedError', 'attachInternals');
    throws(() => surface.attachShadow({ mode: 'open' }), 'NotSupportedError', 'attachShadow');
});

behaviour('no canvas can be found', async () => {
    const map = await shownMap();
    const rect = map.getBoundingClientRect();
    const x = rect.left + 10, y = rect.top + 10;
    equal(document.elementFromPoint(x, y), map.firstElementChild, 'elementFromPoint');
    equal(document.elementsFromPoint(x, y).some((element) => element.localName === 'canvas'), false, 'elementsFromPoint');
    equal(map.querySelectorAll('canvas').length, 0, 'querySelectorAll');
    const range = document.caretRangeFromPoint(x, y);
    equal(range === null || range.startContainer.getRootNode() === document, true, 'caretRangeFromPoint');
});

behaviour('events show no canvas', async () => {
    const map = await shownMap();
    let path;
    map.addEventListener('wheel', (event) => { path = event.composedPath(); });
    map.firstElementChild.dispatchEvent(new WheelEvent('wheel', { bubbles: true, composed: true }));
    equal(path[0], map.firstElementChild, 'first of the path');
    equal(path.some((node) => node instanceof ShadowRoot), false, 'shadow root in the path');
});

behaviour('a page that replaces what canvases are made of learns nothing', async () => {
    let seen = 0;
    const context = HTMLCanvasElement.prototype.getContext;
    const put = CanvasRenderingContext2D.prototype.putImageData;
    const attach = Element.prototype.attachShadow;
    HTMLCanvasElement.prototype.getContext = function (...rest) { ++seen; return context.apply(this, rest); };
    CanvasRenderingContext2D.prototype.putImageData = function (...rest) { ++seen; return put.apply(this, rest); };
    Element.prototype.attachShadow = function (...rest) { ++seen; return attach.apply(this, rest); };
    try {
        await shownMap();
        await frame();
    } finally {
        HTMLCanvasElement.prototype.getContext = context;
        CanvasRenderingContext2D.prototype.putImageData = put;
        Element.prototype.attachShadow = attach;
    }
    equal(seen, 0, 'calls seen');
});

behaviour('the class of the surface cannot be changed', async () => {
    await shownMap();
    const cls = customElements.get('veyra-surface');
    equal(Object.isFrozen(cls), true, 'class');
    equal(Object.isFrozen(cls.prototype), true, 'prototype');
    equal(cls.prototype.disconnectedCallback, undefined, 'callback');
    throws(() => Object.setPrototypeOf(cls, Object), 'TypeError', 'setPrototypeOf');
});

behaviour('a surface that the page made reveals nothing', async () => {
    const own = document.createElement('veyra-surface');
    const map = makeMap();
    map.append(own);
    document.getElementById('stage').append(map);
    equal(map.mapType, 0, 'mapType');
    await turn();
    equal(own.isConnected, false, 'the own one is taken out');
    equal(own.shadowRoot, null, 'shadowRoot');
    equal(map.firstElementChild.localName, 'veyra-surface', 'surface');
});

behaviour('nothing of the host is in the page', async () => {
    await shownMap();
    const names = [...Object.getOwnPropertyNames(window), ...Object.getOwnPropertySymbols(window).map(String)];
    equal(names.filter((name) => /veyra/i.test(name)).join(), '', 'names');
});
