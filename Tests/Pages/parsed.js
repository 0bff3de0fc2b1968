// Runs while the parser stands right behind the first map.
const typeOfMapTypeWhileParsing = typeof document.getElementById('parsed').mapType;
