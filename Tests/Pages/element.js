'use strict';

behaviour('a parsed element is the scripting object for the next script', () => {
    equal(typeOfMapTypeWhileParsing, 'number', 'type of mapType');
});

behaviour('an element that no script has touched shows its map', async () => {
    await until(() => document.querySelector('#untouched > veyra-surface'), 'a surface');
});

behaviour('an inserted element is the scripting object from the next statement on', () => {
    const map = makeMap();
    equal(map.mapType, undefined, 'mapType before');
    document.getElementById('stage').append(map);
    equal(map.mapType, 0, 'mapType after');
});

behaviour('properties are kept by the map', () => {
    const map = addMap();
    map.mapType = 1;
    equal(map.mapType, 1, 'mapType');
    equal(Object.hasOwn(map, 'mapType'), false, 'own property');
});

behaviour('script names are not enumerable and keep the element an ordinary one', () => {
    const map = addMap();
    const keys = [];
    for (const key in map)
        keys.push(key);
    equal(keys.includes('mapType'), false, 'enumerable mapType');
    equal(keys.includes('log'), false, 'enumerable log');
    equal(map instanceof HTMLObjectElement, true, 'instance');
    equal(String(map), '[object HTMLObjectElement]', 'text');
    equal(map.veyraNothing, undefined, 'unknown name');
    throws(() => map.setMapType(1), 'TypeError', 'call of an accessor');
});

behaviour('other object elements have nothing of a map', () => {
    const other = document.createElement('object');
    document.getElementById('stage').append(other);
    equal(other.mapType, undefined, 'read');
    other.mapType = 'mine';
    equal(other.mapType, 'mine', 'read after write');
    equal(Object.hasOwn(other, 'mapType'), true, 'own property');
    throws(() => other.log('x'), 'TypeError', 'call');
    throws(() => addMap().log.call({}, 'x'), 'TypeError', 'call on what is no element');
    equal(HTMLObjectElement.prototype.mapType, undefined, 'read on the prototype');
});

behaviour('the type is compared without case and white space', () => {
    const map = makeMap();
    map.setAttribute('type', '  Application/X-VEYRA-Map ');
    document.getElementById('stage').append(map);
    equal(map.mapType, 0, 'mapType');
    equal(getComputedStyle(map).display, 'inline-block', 'display');
});

behaviour('a late type makes a map at once', () => {
    const late = document.createElement('object');
    document.getElementById('stage').append(late);
    equal(late.mapType, undefined, 'before');
    late.type = mapType;
    equal(late.mapType, 0, 'after');
});

behaviour('another type takes the map away', async () => {
    const map = addMap();
    map.mapType = 1;
    map.type = 'text/plain';
    await turn();
    equal(map.mapType, undefined, 'mapType');
    equal(map.querySelector('veyra-surface'), null, 'surface');
    map.type = mapType;
    equal(map.mapType, 0, 'a new map');
});

behaviour('removal takes the map away at once', () => {
    const map = addMap();
    map.mapType = 1;
    map.remove();
    equal(map.mapType, undefined, 'mapType');
    throws(() => map.log('x'), 'TypeError', 'call');
    equal(map.querySelector('veyra-surface'), null, 'surface');
});

behaviour('removal of an ancestor takes the map away at once', () => {
    const outer = document.createElement('div');
    const inner = document.createElement('div');
    outer.append(inner);
    document.getElementById('stage').append(outer);
    const map = makeMap();
    inner.append(map);
    equal(map.mapType, 0, 'inside');
    document.getElementById('stage').replaceChildren();
    equal(map.mapType, undefined, 'outside');
});

behaviour('removed and put back in one task it has a new map', () => {
    const map = addMap();
    map.mapType = 1;
    const parent = map.parentNode;
    map.remove();
    parent.append(map);
    equal(map.mapType, 0, 'mapType');
});

behaviour('moved within the document it has a new map', () => {
    const map = addMap();
    const place = document.createElement('div');
    map.parentNode.append(place);
    map.mapType = 1;
    place.append(map);
    equal(map.mapType, 0, 'mapType');
    equal(map.querySelectorAll('veyra-surface').length, 1, 'surfaces');
});

behaviour('several maps keep their own values', () => {
    const maps = Array.from({ length: 8 }, () => addMap());
    maps.forEach((map, i) => { map.droppedPinIdentifier = `pin ${i}`; });
    maps.forEach((map, i) => equal(map.droppedPinIdentifier, `pin ${i}`, `map ${i}`));
});

behaviour('a method taken off one map acts on another', () => {
    const first = addMap(), second = addMap();
    const setter = Object.getOwnPropertyDescriptor(HTMLObjectElement.prototype, 'mapType').set;
    setter.call(second, 2);
    equal(first.mapType, 0, 'first');
    equal(second.mapType, 2, 'second');
});

behaviour('a copy by cloneNode gets a map of its own', async () => {
    const map = addMap();
    map.mapType = 1;
    await turn();
    const copy = map.cloneNode(true);
    equal(copy.mapType, undefined, 'outside');
    map.parentNode.append(copy);
    equal(copy.mapType, 0, 'copy');
    equal(map.mapType, 1, 'original');
    equal(copy.querySelectorAll('veyra-surface').length, 1, 'surfaces of the copy');
});

behaviour('a copied container shows maps that no script has touched', async () => {
    const stage = document.getElementById('stage');
    const map = addMap();
    await turn();
    const holder = document.createElement('div');
    for (const child of [map.cloneNode(true), map.cloneNode(false)])
        holder.append(child);
    stage.append(holder);
    await until(() => holder.querySelectorAll('object > veyra-surface').length === 2, 'two surfaces');
});

behaviour('a page that empties the element keeps the map and gets its surface back', async () => {
    const map = addMap();
    map.mapType = 1;
    map.replaceChildren();
    equal(map.mapType, 1, 'at once');
    await frame();
    equal(map.mapType, 1, 'later');
    equal(map.firstElementChild.localName, 'veyra-surface', 'surface');
    const children = map.childNodes.length;
    while (map.firstChild)
        map.firstChild.remove();
    await frame();
    equal(map.childNodes.length, children, 'children');
    equal(map.mapType, 1, 'in the end');
});

behaviour('a page that always takes the surface out again goes on', async () => {
    const map = addMap();
    equal(map.mapType, 0, 'mapType');
    let removals = 0;
    const observer = new MutationObserver(() => {
        ++removals;
        map.querySelector('veyra-surface')?.remove();
    });
    observer.observe(map, { childList: true });
    map.firstElementChild.remove();
    for (let i = 0; i < 5; ++i)
        await frame();
    observer.disconnect();
    equal(removals > 1 && removals < 40, true, `${removals} removals`);
    await frame();
    await frame();
    equal(map.querySelectorAll('veyra-surface').length, 1, 'surfaces in the end');
});

behaviour('a surface moved elsewhere comes back', async () => {
    const map = addMap();
    const other = addMap();
    map.mapType = 1;
    other.mapType = 2;
    await turn();
    other.append(map.firstElementChild);
    await frame();
    equal(map.querySelectorAll('veyra-surface').length, 1, 'own');
    equal(other.querySelectorAll('veyra-surface').length, 1, 'other');
    equal(map.mapType, 1, 'value');
    equal(other.mapType, 2, 'value of the other');
});

behaviour('maps in a shadow tree work once touched', async () => {
    const host = document.createElement('div');
    document.getElementById('stage').append(host);
    const root = host.attachShadow({ mode: 'open' });
    const map = makeMap();
    root.append(map);
    equal(map.mapType, 0, 'mapType');
    equal(getComputedStyle(map).display, 'inline-block', 'display');
    host.remove();
    equal(map.mapType, undefined, 'removed');
});

behaviour('own functions of the page do not disturb a map', async () => {
    const map = addMap();
    const saved = { create: document.createElement, append: Element.prototype.append, iterator: Array.prototype[Symbol.iterator] };
    const fail = () => { throw new Error('called'); };
    try {
        document.createElement = fail;
        Element.prototype.append = fail;
        Element.prototype.attachShadow = fail;
        Array.prototype[Symbol.iterator] = fail;
        throws(() => customElements.define('veyra-surface', class extends HTMLElement {}), 'NotSupportedError', 'define');
        const copy = map.cloneNode(false);
        map.parentNode.appendChild(copy);
        equal(copy.mapType, 0, 'mapType');
        copy.parentNode.removeChild(copy);
        equal(copy.mapType, undefined, 'removed');
    } finally {
        document.createElement = saved.create;
        delete document.createElement;
        Element.prototype.append = saved.append;
        Array.prototype[Symbol.iterator] = saved.iterator;
    }
});
