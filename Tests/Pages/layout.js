'use strict';

function addStyled(style, attributes = {}) {
    const map = document.createElement('object');
    map.setAttribute('type', mapType);
    map.style.cssText = style;
    for (const [name, value] of Object.entries(attributes))
        map.setAttribute(name, value);
    document.getElementById('stage').append(map);
    return map;
}

async function sizes(map) {
    await until(() => map.querySelector('veyra-surface'), 'a surface');
    const surface = map.firstElementChild;
    return [map.offsetWidth, map.offsetHeight, surface.offsetWidth, surface.offsetHeight].join();
}

behaviour('the element has the size of its style', async () => {
    document.getElementById('stage').style.width = '640px';
    equal(await sizes(addStyled('width: 100%; height: 400px')), '640,400,640,400', 'sizes');
});

behaviour('it has the size of its attributes', async () => {
    equal(await sizes(addStyled('', { width: '320', height: '200' })), '320,200,320,200', 'sizes');
});

behaviour('without a size it is 300 by 150', async () => {
    equal(await sizes(addStyled('')), '300,150,300,150', 'sizes');
});

behaviour('block and absolute elements and those in grids and flex boxes have their sizes', async () => {
    equal(await sizes(addStyled('display: block; width: 250px; height: 120px')), '250,120,250,120', 'block');
    equal(await sizes(addStyled('position: absolute; left: 0; top: 0; width: 90px; height: 80px')), '90,80,90,80', 'absolute');
    const stage = document.getElementById('stage');
    stage.replaceChildren();
    stage.style.cssText = 'display: flex; width: 500px; height: 220px';
    equal(await sizes(addStyled('flex: 1; height: auto')), '500,220,500,220', 'flex');
    stage.replaceChildren();
    stage.style.cssText = 'display: grid; width: 400px; height: 210px; grid-template: 1fr / 1fr';
    equal(await sizes(addStyled('width: auto; height: auto')), '400,210,400,210', 'grid');
    stage.style.cssText = '';
});

behaviour('a minimum height and an aspect ratio count', async () => {
    equal(await sizes(addStyled('width: 200px; min-height: 260px')), '200,260,200,260', 'minimum height');
    equal(await sizes(addStyled('width: 200px; height: auto; aspect-ratio: 2')), '200,100,200,100', 'aspect ratio');
});

behaviour('fallback content is not shown beside the map', async () => {
    const map = makeMap();
    map.append('A long text that would be wider than the map and higher than the map '.repeat(20));
    document.getElementById('stage').append(map);
    equal(await sizes(map), '200,100,200,100', 'sizes');
    const rect = map.getBoundingClientRect();
    equal(document.elementFromPoint(rect.left + 5, rect.top + 5), map.firstElementChild, 'in front');
});

behaviour('a page that assigns adoptedStyleSheets keeps the layout', async () => {
    const map = addStyled('width: 210px; height: 110px');
    equal(await sizes(map), '210,110,210,110', 'before');
    await frame();
    document.adoptedStyleSheets = [];
    await until(() => map.offsetWidth === 210 && map.offsetHeight === 110, 'the layout');
});

behaviour('rules of the page for all elements do not hide the surface', async () => {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync('veyra-surface { display: none; width: 5px; position: static }');
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, sheet];
    try {
        equal(await sizes(addStyled('width: 210px; height: 110px')), '210,110,210,110', 'sizes');
    } finally {
        document.adoptedStyleSheets = document.adoptedStyleSheets.filter((other) => other !== sheet);
    }
});

behaviour('an element with data shows its map', async () => {
    equal(await sizes(addStyled('width: 210px; height: 110px', { data: 'map.html' })), '210,110,210,110', 'sizes');
});
