// Runs the suites of surface.js and annotations.js, which stand before this text, in the script host: prints each failed check, and fails when
// there is one.

(() => {
    const failed = [];
    let passed = 0;
    const report = (name, isGood, detail) => {
        if (isGood)
            ++passed;
        else
            failed.push(name + ': ' + detail);
    };
    runSurfaceConformance(map, GeoMap, report).then(() => runAnnotationConformance(map, report)).then(() => {
        for (const failure of failed)
            console.error(failure);
        console.log('conformance: ' + (failed.length ? failed.length + ' failed' : 'all ' + passed + ' passed'));
        if (failed.length)
            throw new Error(failed.length + ' checks of the scripting surface failed');
    });
})();
