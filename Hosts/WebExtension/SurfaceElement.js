// Runs in the page's own world, before any script of the page: defines the custom element that stands between a map's
// <object> and its canvas. The engine reports its removal at once, which no observer does. Nothing of it can be changed
// later, and without internals nobody gets at its shadow root.
(function (disconnected) {
    'use strict';

    class VeyraSurface extends HTMLElement {
        static disabledFeatures = ['internals'];

        // Not left to the engine: its own passes arguments on by way of Array.prototype, which the page can replace.
        constructor() {
            super();
        }
    }
    VeyraSurface.prototype.disconnectedCallback = disconnected;
    customElements.define('veyra-surface', VeyraSurface);
    delete VeyraSurface.prototype.disconnectedCallback;
    Object.freeze(VeyraSurface.prototype);
    Object.freeze(VeyraSurface);
})
