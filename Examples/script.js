// Run with: veyra script Examples/script.js --output map.png
// There is no page here: `map` is the map, and the program ends when nothing is left to do.
map.listener = {
    mapRegionDidChange(region) { console.log('shows', String(region)); },
    mapDidFinishLoadingMap() { console.log('everything is drawn'); },
};
map.setRegion({ latitude: 36, longitude: 18, latitudeDelta: 18, longitudeDelta: 36 }, false);
