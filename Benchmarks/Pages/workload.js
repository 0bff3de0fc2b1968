// The work that every map of the benchmark does, ours and the script libraries': the same content, the same movements.
// Each page has a `library` with start, center, show, convert, addPins, addLine, addPolygons and clear; what adds answers
// when the map says that it has drawn. Content lies around 48° N, 10° E and is the same at each call.
const frame = () => new Promise(requestAnimationFrame);

function random(seed = 1) {
    return () => {
        seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0;
        return seed / 2 ** 32;
    };
}
function pins(count, latitude = 48, longitude = 10, name = 'pin ') {
    const next = random();
    return Array.from({ length: count }, (_, i) => (
        { latitude: latitude + 14 * (next() - .5), longitude: longitude + 26 * (next() - .5), identifier: name + i, title: 'Pin ' + i, pinAnimatesDrop: false }));
}
// So far away that no zoom of these comes near.
const pinsElsewhere = (count) => pins(count, -65, -160, 'elsewhere ');
function line(count) {
    const next = random();
    const coordinates = [];
    let latitude = 48, longitude = 0;
    for (let i = 0; i < count; ++i) {
        latitude += (next() - .5) * .02 + (48 - latitude) * .001;
        longitude += 20 / count;
        coordinates.push(latitude + 4 * Math.sin(i / count * 20), longitude);
    }
    return { type: 'polyline', id: 'line', coordinates, strokeColor: 'c03020', lineWidth: 2 };
}
function polygons(count) {
    const next = random();
    return Array.from({ length: count }, (_, i) => {
        const latitude = 48 + 14 * (next() - .5), longitude = 10 + 26 * (next() - .5);
        const coordinates = [];
        for (let k = 0; k < 24; ++k)
            coordinates.push(latitude + .1 * Math.sin(k / 24 * 2 * Math.PI), longitude + .15 * Math.cos(k / 24 * 2 * Math.PI));
        return { type: 'polygon', id: 'polygon ' + i, coordinates, fillColor: '4080c0', fillOpacity: .5, strokeColor: '204060', lineWidth: 1 };
    });
}
// The pairs of a flat list of coordinates, as what `make` makes of a latitude and a longitude.
function pairs(coordinates, make) {
    const list = [];
    for (let i = 0; i < coordinates.length; i += 2)
        list.push(make(coordinates[i], coordinates[i + 1]));
    return list;
}
// The zoom, in tiles of 256 pixels, at which so many degrees of latitude around 48° N fill 768 pixels.
const zoomOf = (delta) => Math.log2(720 / delta);

const step = (count, change) => new Promise((resolve) => {
    let i = 0;
    requestAnimationFrame(function next() {
        if (i === count)
            return resolve();
        change(i++);
        requestAnimationFrame(next);
    });
});
// Half a second of small steps each way, as a script or a finger moves the map.
function pan(count, latitude, longitude, delta) {
    return step(count, (i) => library.center(latitude + delta * Math.sin(i / 30), longitude + delta * 2 * Math.cos(i / 30)));
}
function zoom(count, latitude, longitude) {
    return step(count, (i) => library.show(latitude, longitude, 20 * 2 ** (1.5 * Math.sin(i / 25))));
}

// Adds to an empty map. Answers when it began, in milliseconds since 1970, and how long it took until the map said that
// it has drawn and two more frames had passed.
async function timed(add) {
    await library.clear();
    await library.show(48, 10, 20);
    await new Promise((resolve) => setTimeout(resolve, 500));
    const start = performance.now();
    await add();
    await frame();
    await frame();
    return [performance.timeOrigin + start, performance.now() - start];
}

// Nanoseconds a conversion of a coordinate to a point, the middle of several rounds of 200,000.
async function conversions(rounds = 9, latitude = 48.2) {
    const place = { latitude, longitude: 16.4 };
    const times = [];
    for (let round = 0; round < rounds; ++round) {
        const start = performance.now();
        for (let i = 0; i < 200000; ++i)
            library.convert(place);
        times.push((performance.now() - start) * 1e6 / 200000);
        await frame();
    }
    return times.sort((a, b) => a - b)[rounds >> 1];
}
