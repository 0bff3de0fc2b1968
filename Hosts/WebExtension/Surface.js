// Finds the maps of one document, gives each a canvas that the page cannot reach, and reports what happens to them to the
// native side, `host`. Runs in the isolated world of a frame: nothing here is visible to the page, and nothing that the
// page does to its own objects reaches here. `attachInput` comes from SurfaceInput.js.
(function (host, attachInput) {
    'use strict';

    const mapType = 'application/x-veyra-map';
    const htmlNamespace = 'http://www.w3.org/1999/xhtml';
    const registryKey = Symbol.for('veyra');
    const permissionDenied = 1; // GeolocationPositionError.PERMISSION_DENIED

    // An <object> that shows its fallback content is an ordinary inline element. This makes it what other embedded content
    // is, and any rule of the page is stronger. The words of `type` are compared so that white space around it does not count.
    const documentRules = `
        :where(object[type~="${mapType}" i]) { display: inline-block; position: relative; overflow: hidden; }
        :where(object[type~="${mapType}" i]:not([width])) { width: 300px; }
        :where(object[type~="${mapType}" i]:not([height])) { height: 150px; }`;
    const surfaceRules = `
        :host { display: block !important; position: absolute !important; inset: 0 !important; margin: 0 !important;
                width: auto !important; height: auto !important; overflow: hidden !important; }
        canvas { display: block; position: absolute; left: 0; top: 0; width: 100%; height: 100%; outline: none;
                 -webkit-user-select: none; user-select: none; -webkit-user-drag: none; }
        canvas:focus-visible, canvas:has(a:focus-visible) { outline: 2px solid Highlight; outline-offset: -2px; }`;

    const isShown = () => document.visibilityState === 'visible' && innerWidth > 0 && innerHeight > 0;
    const isEmpty = (rect) => rect === null || rect.width === 0 || rect.height === 0;
    const maps = new Map(); // by element
    const darkScheme = matchMedia('(prefers-color-scheme: dark)');
    const unparsed = new Set(); // elements whose parameters the parser may still add
    let hidden = false;

    const sheets = new WeakMap(); // documents to the rules for their maps
    function adoptRules(element) {
        const root = element.getRootNode();
        let sheet = sheets.get(document);
        if (!sheet) {
            sheet = new CSSStyleSheet();
            sheet.replaceSync(documentRules);
            sheets.set(document, sheet);
        }
        if (!root.adoptedStyleSheets.includes(sheet))
            root.adoptedStyleSheets = [...root.adoptedStyleSheets, sheet];
    }

    function isMap(element) {
        return element.localName === 'object' && element.namespaceURI === htmlNamespace &&
            (element.getAttribute('type') ?? '').trim().toLowerCase() === mapType;
    }

    function isLive(element) {
        return element.isConnected && element.ownerDocument.defaultView === window && isMap(element);
    }

    // Attributes and parameters by name in lower case; a parameter is stronger than an attribute of its name.
    function argumentsOf(element) {
        const found = new Map();
        for (const attribute of element.attributes)
            found.set(attribute.name.toLowerCase(), attribute.value);
        for (const child of element.children) {
            if (child.localName === 'param' && child.hasAttribute('name'))
                found.set(child.getAttribute('name').toLowerCase(), child.getAttribute('value') ?? '');
        }
        return [...found].flat();
    }

    const resizes = new ResizeObserver((entries) => {
        for (const entry of entries)
            surfaces.get(entry.target)?.resized(entry.contentRect);
    });
    // Somewhat more than the visible part, so that a map which scrolls into view is there already.
    const intersections = new IntersectionObserver((entries) => {
        for (const entry of entries)
            surfaces.get(entry.target)?.intersected(entry.isIntersecting);
    }, { rootMargin: '50%' });
    const surfaces = new WeakMap(); // surface elements to maps
    let stamp = null; // an image with which pictures come to their canvases, a piece at a time that the cache holds

    class MapSurface {
        constructor(element) {
            this.element = element;
            this.handle = null; // the native side, given by host.start
            this.rect = null; // until the first measurement
            this.intersecting = null; // likewise
            this.placing = false;
            this.isRestoring = false;
            this.clicked = () => {}; // called with the point of the canvas where the user has clicked
            this.watch = null; // the number of the geolocation watch that runs
            this.animate = () => {
                const picture = host.animationFrame(this.handle);
                if (!picture)
                    return;
                try {
                    this.put(picture);
                } finally {
                    host.framePut(this.handle);
                }
            };

            // It takes input in the whole of its surface from the start, and has its own size from its first picture on.
            this.canvas = document.createElement('canvas');
            this.canvas.width = this.canvas.height = 0;
            this.canvas.tabIndex = 0;
            this.canvas.setAttribute('role', 'application');
            this.canvas.setAttribute('aria-label', element.getAttribute('aria-label') || element.title || 'Map');
            this.caption = document.createElement('div');
            this.status = document.createElement('div');
            this.status.setAttribute('role', 'status');
            this.elements = document.createElement('div');
            this.actions = new Map(); // numbers to buttons, kept so that one that is read is not taken away
            this.canvas.append(this.elements, this.status, this.caption);
            this.context = this.canvas.getContext('2d', { alpha: false, willReadFrequently: true });

            this.surface = document.createElement('veyra-surface');
            const root = this.surface.attachShadow({ mode: 'closed' });
            const sheet = new CSSStyleSheet();
            sheet.replaceSync(surfaceRules);
            root.adoptedStyleSheets = [sheet];
            root.append(this.canvas);
            surfaces.set(this.surface, this);
            attachInput(this);
        }

        // Before the next picture of the page, but not at once: a page that takes out again and again what it does not know
        // must not keep us both busy for ever.
        scheduleRestore() {
            if (this.isRestoring)
                return;
            this.isRestoring = true;
            requestAnimationFrame(() => {
                this.isRestoring = false;
                if (maps.get(this.element) === this)
                    this.restore();
            });
        }

        // Puts the surface where it belongs: the page may have emptied the element, or a copy of another map's content, with
        // a dead surface in it, may have come with it. The rules go when the page assigns adoptedStyleSheets.
        restore() {
            adoptRules(this.element);
            for (const child of [...this.element.children]) {
                if (child.localName === 'veyra-surface' && child !== this.surface)
                    child.remove();
            }
            if (this.surface.parentNode !== this.element) {
                this.placing = true;
                this.element.prepend(this.surface);
                this.placing = false;
            }
        }

        observe() {
            resizes.observe(this.surface);
            intersections.observe(this.surface);
        }

        unobserve() {
            resizes.unobserve(this.surface);
            intersections.unobserve(this.surface);
        }

        resized(rect) {
            adoptRules(this.element);
            if (isEmpty(this.rect) && !isEmpty(rect)) {
                // What was observed of a surface without a size says nothing about this one.
                this.intersecting = null;
                intersections.unobserve(this.surface);
                intersections.observe(this.surface);
            }
            this.rect = rect;
            this.report();
        }

        intersected(intersecting) {
            this.intersecting = intersecting;
            this.report();
        }

        isMeasured() {
            return this.rect !== null && this.intersecting !== null;
        }

        // Whether the measurement is that of the present layout. The engine shows the content of a new <object>, and so the
        // surface, only some time after its first layout.
        isUpToDate() {
            const style = getComputedStyle(this.surface);
            const rect = { width: parseFloat(style.width) || 0, height: parseFloat(style.height) || 0 };
            if (isEmpty(rect))
                return this.element.offsetWidth === 0 || this.element.offsetHeight === 0;
            return this.isMeasured() && Math.abs(rect.width - this.rect.width) < 0.1 &&
                Math.abs(rect.height - this.rect.height) < 0.1;
        }

        report() {
            if (this.isMeasured())
                host.layOut(this.handle, this.rect.width, this.rect.height, devicePixelRatio,
                    this.intersecting && !hidden && isShown(), darkScheme.matches);
        }

        requestFrame() {
            requestAnimationFrame(this.animate);
        }

        // Called by the native side: asks where the user is, from now on. The engine asks the application for permission;
        // that it was given shows in a first position, or in an error other than "denied".
        startLocating() {
            const { handle } = this;
            if (!navigator.geolocation) {
                // The frame's embedder has not delegated it.
                queueMicrotask(() => host.notLocated(handle, permissionDenied, 'Geolocation is not allowed here'));
                return;
            }
            this.watch = navigator.geolocation.watchPosition(({ coords }) => {
                host.located(handle, coords.latitude, coords.longitude, coords.accuracy, coords.altitude ?? 0,
                    coords.altitude === null ? -1 : coords.altitudeAccuracy ?? 0);
            }, (error) => host.notLocated(handle, error.code, error.message), { enableHighAccuracy: true });
        }

        stopLocating() {
            if (this.watch !== null)
                navigator.geolocation.clearWatch(this.watch);
            this.watch = null;
        }

        // Called by the native side. What stands in a canvas is not seen, but read and reached by the keyboard; the text is
        // painted in the rectangle.
        setCaption(text, url, x, y, width, height) {
            const caption = document.createElement(url ? 'a' : 'span');
            caption.textContent = text;
            if (url) {
                caption.href = url;
                caption.target = '_blank';
                caption.rel = 'noopener noreferrer';
                caption.addEventListener('click', (event) => event.stopPropagation()); // the page has had its click
            }
            this.caption.replaceChildren(caption);
            this.clicked = (at) => {
                if (url && at.x >= x && at.x < x + width && at.y >= y && at.y < y + height)
                    caption.click(); // within the user's click, as the engine opens nothing later
            };
        }

        // Called by the native side: what has the focus in the map, then an element a line, the number of what it does in
        // front of its label. The canvas' content is not painted, but read aloud and pressed by those who do not see it;
        // the keyboard goes through the canvas itself.
        setAccessibilityState(lines) {
            const [status, ...elements] = lines.split('\n');
            if (this.status.textContent !== status)
                this.status.textContent = status;
            const buttons = elements.map((element) => {
                const button = this.actions.get(element[0]) ?? document.createElement('button');
                this.actions.set(element[0], button);
                button.tabIndex = -1;
                button.textContent = element.slice(1);
                button.onclick = () => host.act(this.handle, Number(element[0]));
                return button;
            });
            this.elements.replaceChildren(...buttons);
        }

        // `picture` is its width and height in pixels, the pixels a point, then x, y, width and height of each rectangle
        // that has changed.
        put([width, height, scale, ...changes]) {
            const { canvas } = this;
            if (canvas.width !== width || canvas.height !== height) {
                canvas.width = width;
                canvas.height = height;
            }
            canvas.style.width = width / scale + 'px';
            canvas.style.height = height / scale + 'px';
            for (let i = 0; i < changes.length; i += 4)
                this.putRect(changes[i], changes[i + 1], changes[i + 2], changes[i + 3]);
        }

        putRect(x, y, width, height) {
            stamp ??= new ImageData(512, 256);
            for (let top = 0; top < height; top += stamp.height) {
                const rows = Math.min(stamp.height, height - top);
                for (let left = 0; left < width; left += stamp.width) {
                    const columns = Math.min(stamp.width, width - left);
                    host.copyPixels(this.handle, stamp.data, stamp.width, x + left, y + top, columns, rows);
                    this.context.putImageData(stamp, x + left, y + top, 0, 0, columns, rows);
                }
            }
        }
    }

    // The native side of the element's map, made if need be; null when the element is no map or in no document. Asks the
    // frame of the element's document: an element keeps the script prototype of the document that it was made in.
    function find(element) {
        const home = element.ownerDocument.defaultView;
        if (home && home !== window)
            return home[registryKey]?.find(element) ?? null;
        const known = maps.get(element);
        if (known && isLive(element))
            return known.handle;
        if (known)
            stop(known);
        return isLive(element) ? start(element) : null;
    }

    function start(element) {
        unparsed.delete(element);
        const map = new MapSurface(element);
        map.handle = host.start(map, argumentsOf(element), document.baseURI, devicePixelRatio);
        if (!map.handle)
            return null;
        maps.set(element, map);
        map.restore();
        map.observe();
        return map.handle;
    }

    function stop(map) {
        maps.delete(map.element);
        map.unobserve();
        map.stopLocating();
        host.stop(map.handle);
        map.images = null;
        map.surface.remove();
    }

    // Called at once when a surface has left its document or was moved.
    function disconnected(surface) {
        const map = surfaces.get(surface);
        if (!map || map.placing || maps.get(map.element) !== map)
            return;
        const emptied = map.surface.parentNode !== map.element && isLive(map.element);
        if (!emptied)
            stop(map); // an element that was moved gets a new map from the observer, or when it is touched
    }

    function isParsed(element) {
        if (document.readyState !== 'loading')
            return true;
        for (let node = element; node; node = node.parentNode) {
            if (node.nextSibling)
                return true;
        }
        return false;
    }

    function consider(element) {
        if (maps.has(element) || !isLive(element))
            return;
        if (isParsed(element))
            start(element);
        else
            unparsed.add(element);
    }

    function considerTree(node) {
        if (node.localName === 'object')
            consider(node);
        if (node.firstElementChild)
            node.querySelectorAll('object').forEach(consider);
    }

    function considerUnparsed() {
        unparsed.forEach(consider);
    }

    const mutations = new MutationObserver((records) => {
        for (const map of [...maps.values()]) {
            if (!isLive(map.element))
                stop(map);
        }
        for (const record of records) {
            if (record.target === document)
                listen(); // document.open takes all listeners away
            if (record.type === 'attributes')
                consider(record.target);
            maps.get(record.target)?.scheduleRestore();
            record.addedNodes.forEach(considerTree);
        }
        considerUnparsed();
    });

    function reportAll() {
        for (const map of maps.values())
            map.report();
    }

    function onPageHide(event) {
        hidden = true;
        reportAll();
        host.pageHidden(event.persisted);
    }

    function onPageShow() {
        if (!hidden)
            return;
        hidden = false;
        host.pageShown();
        reportAll();
    }

    let resolution = null;
    function onResolution() {
        resolution = matchMedia(`(resolution: ${devicePixelRatio}dppx)`);
        resolution.addEventListener('change', onResolution, { once: true });
        reportAll();
    }

    function listen() {
        addEventListener('pagehide', onPageHide, true);
        addEventListener('pageshow', onPageShow, true);
        addEventListener('load', host.progress);
        document.addEventListener('DOMContentLoaded', considerUnparsed);
        document.addEventListener('visibilitychange', reportAll);
    }

    // The window has a document that it did not have before.
    function documentChanged() {
        for (const map of [...maps.values()])
            stop(map);
        mutations.disconnect();
        mutations.observe(document, { childList: true, subtree: true, attributes: true, attributeFilter: ['type'] });
        listen();
        considerTree(document);
    }

    // Nothing is on its way any more but what the native side knows of. A document that is not shown measures nothing.
    function isSettled() {
        return document.readyState === 'complete' && unparsed.size === 0 &&
            (!isShown() || [...maps.values()].every((map) => map.isUpToDate()));
    }

    darkScheme.addEventListener('change', reportAll);
    onResolution();
    documentChanged();
    window[registryKey] = { find };
    return { find, disconnected, documentChanged, isSettled };
})
