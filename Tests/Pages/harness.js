// What the test pages share. A page names its behaviours; the test program runs each by name and gets '' or what failed.
'use strict';

const mapType = 'application/x-veyra-map';
const behaviours = new Map();

function behaviour(name, body) {
    behaviours.set(name, body);
}

async function runBehaviour(name) {
    document.getElementById('stage').replaceChildren();
    try {
        await behaviours.get(name)();
        return '';
    } catch (error) {
        return `${error.message}\n${error.stack}`;
    }
}

function equal(actual, expected, what) {
    if (!Object.is(actual, expected))
        throw new Error(`${what}: expected ${String(expected)}, was ${String(actual)}`);
}

function throws(body, name, what) {
    try {
        body();
    } catch (error) {
        equal(error.name, name, what);
        return;
    }
    throw new Error(`${what}: nothing was thrown`);
}

function makeMap(doc = document) {
    const map = doc.createElement('object');
    map.type = mapType;
    map.style.width = '200px';
    map.style.height = '100px';
    return map;
}

// A map in the document; inserted by this very call.
function addMap(doc = document) {
    const map = makeMap(doc);
    (doc.getElementById('stage') ?? doc.body).append(map);
    return map;
}

function isMap(element) {
    return typeof element.mapType === 'number';
}

function turn() {
    return new Promise((resolve) => setTimeout(resolve, 0));
}

function frame() {
    return new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve, 0)));
}

async function until(condition, what) {
    for (let tries = 0; tries < 300; ++tries) {
        if (condition())
            return;
        await new Promise((resolve) => setTimeout(resolve, 10));
    }
    throw new Error(`${what} did not come about`);
}

async function loaded(element, set) {
    await new Promise((resolve) => {
        element.addEventListener('load', resolve, { once: true });
        set();
    });
}
