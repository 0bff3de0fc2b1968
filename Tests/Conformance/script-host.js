// Runs the suite of surface.js, which stands before this text, in the script host: prints each failed check, and fails when
// there is one.

(() => {
    const failed = [];
    let passed = 0;
    runSurfaceConformance(map, GeoMap, (name, isGood, detail) => {
        if (isGood)
            ++passed;
        else
            failed.push(name + ': ' + detail);
    }).then(() => {
        for (const failure of failed)
            console.error(failure);
        console.log('conformance: ' + (failed.length ? failed.length + ' failed' : 'all ' + passed + ' passed'));
        if (failed.length)
            throw new Error(failed.length + ' checks of the scripting surface failed');
    });
})();
