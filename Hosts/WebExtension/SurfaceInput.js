// Hands the input that a map's canvas receives to the map, and leaves to the page what the map does not use. Runs in the
// isolated world of a frame; `host` is the native side. Locations are the canvas' own points, whatever transforms apply.
(function (host) {
    'use strict';

    // Bits of host.inputPolicy, as UIEvent.h has them.
    const usesDrags = 1, usesScrolls = 2, usesPinches = 4, usesPanKeys = 8, usesZoomKeys = 16;
    const usesNextKey = 32, usesPreviousKey = 64, usesActivationKeys = 128, usesEscapeKey = 256;
    const usesClick = 512;
    // Phases and types of touches, as UIEvent.h has them.
    const began = 0, moved = 1, ended = 2, cancelled = 3;
    const direct = 0, pencil = 1, indirectPointer = 2;

    const policyOfKey = new Map([
        ...['ArrowLeft', 'ArrowRight', 'ArrowUp', 'ArrowDown'].map((key) => [key, usesPanKeys]),
        ...['+', '-', '='].map((key) => [key, usesZoomKeys]), ['Home', usesPanKeys | usesZoomKeys],
        ['Tab', usesNextKey], ['Enter', usesActivationKeys], [' ', usesActivationKeys], ['Escape', usesEscapeKey],
    ]);
    // Pointers and fingers number themselves apart; a view sees one space of numbers.
    const firstFinger = 1 << 16;
    // The engine follows a touch with a mouse press and release at the same place, prevented or not, and makes wheel turns
    // of a drag that was left to the page.
    const emulationTime = 1000, emulationDistance = 32;
    const pointsInLine = 40;
    const clickDistance = 6;

    function age(event) {
        return Math.max(0, performance.now() - event.timeStamp);
    }

    return function attach(map) {
        const canvas = map.canvas;
        const pressed = new Set();
        let fingers = 0;
        let lastTouch = null;
        let pressedAt = null;

        const uses = (bits) => (host.inputPolicy(map.handle) & bits) !== 0;
        const local = (at) => webkitConvertPointFromPageToNode(canvas, new WebKitPoint(at.pageX, at.pageY));

        function send(identifier, type, phase, at, event) {
            const point = local(at);
            host.touch(map.handle, identifier, type, phase, point.x, point.y, age(event));
        }

        function followsTouch(event) {
            return fingers > 0 || (lastTouch !== null && event.timeStamp - lastTouch.time < emulationTime);
        }

        function isEmulated(event) {
            return lastTouch !== null && followsTouch(event) &&
                Math.abs(event.clientX - lastTouch.x) < emulationDistance &&
                Math.abs(event.clientY - lastTouch.y) < emulationDistance;
        }

        function pointerType(event) {
            return event.pointerType === 'pen' ? pencil : indirectPointer;
        }

        function onPointerDown(event) {
            if (event.pointerType === 'touch' || event.button !== 0 || isEmulated(event))
                return;
            canvas.focus({ preventScroll: true });
            canvas.setPointerCapture(event.pointerId);
            pressed.add(event.pointerId);
            send(event.pointerId, pointerType(event), began, event, event);
        }

        function onPointerMove(event) {
            if (pressed.has(event.pointerId))
                send(event.pointerId, pointerType(event), moved, event, event);
        }

        function onPointerEnd(event) {
            if (event.type === 'pointerup' && event.button !== 0)
                return;
            if (pressed.delete(event.pointerId))
                send(event.pointerId, pointerType(event), event.type === 'pointerup' ? ended : cancelled, event, event);
        }

        // A press on the map selects no text of the page and starts no drag of its own.
        function onMouseDown(event) {
            pressedAt = event.button === 0 ? { x: event.clientX, y: event.clientY } : null;
            if (event.button === 0 && uses(usesDrags))
                event.preventDefault();
        }

        // Of a press that has not moved and that no view of the map keeps to itself; touches come here too, as the presses
        // that the engine makes of them.
        function onClick(event) {
            if (event.target === canvas && pressedAt !== null && !uses(usesClick) &&
                Math.hypot(event.clientX - pressedAt.x, event.clientY - pressedAt.y) < clickDistance)
                map.clicked(local(event));
        }

        const phases = { touchstart: began, touchmove: moved, touchend: ended, touchcancel: cancelled };

        function onTouch(event) {
            if (event.type === 'touchstart')
                canvas.focus({ preventScroll: true });
            for (const touch of event.changedTouches) {
                send(firstFinger + touch.identifier, direct, phases[event.type], touch, event);
                lastTouch = { time: event.timeStamp, x: touch.clientX, y: touch.clientY };
            }
            fingers = event.targetTouches.length;
            if (event.cancelable && uses(event.targetTouches.length > 1 ? usesDrags | usesPinches : usesDrags))
                event.preventDefault();
        }

        function onWheel(event) {
            if (event.deltaY === 0 || !uses(usesScrolls) || followsTouch(event))
                return;
            const unit = [1, pointsInLine, canvas.clientHeight][event.deltaMode];
            const point = local(event);
            host.scroll(map.handle, point.x, point.y, event.deltaX * unit, event.deltaY * unit, event.ctrlKey, age(event));
            event.preventDefault();
        }

        function onKeyDown(event) {
            if (event.isComposing || event.target !== canvas)
                return;
            const used = host.inputPolicy(map.handle); // as it is before the key
            host.key(map.handle, event.key, event.shiftKey, event.ctrlKey, event.altKey, event.metaKey, age(event));
            if (event.ctrlKey || event.altKey || event.metaKey)
                return;
            const policy = event.key === 'Tab' && event.shiftKey ? usesPreviousKey : policyOfKey.get(event.key);
            if (policy && (used & policy) === policy)
                event.preventDefault();
        }

        canvas.addEventListener('pointerdown', onPointerDown);
        canvas.addEventListener('pointermove', onPointerMove);
        for (const type of ['pointerup', 'pointercancel', 'lostpointercapture'])
            canvas.addEventListener(type, onPointerEnd);
        canvas.addEventListener('mousedown', onMouseDown);
        canvas.addEventListener('click', onClick);
        for (const type of Object.keys(phases))
            canvas.addEventListener(type, onTouch, { passive: false });
        canvas.addEventListener('wheel', onWheel, { passive: false });
        canvas.addEventListener('keydown', onKeyDown);
        canvas.addEventListener('focus', () => host.focus(map.handle, true));
        canvas.addEventListener('blur', () => host.focus(map.handle, false));
    };
})
