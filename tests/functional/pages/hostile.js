// Posts the worst messages that the bridge knows, by every handler that this frame can see as its own.
function postTheWorst() {
    const handlers = window.webkit && window.webkit.messageHandlers;
    const worst = [
        { type: 'auth_token', token: 'stolen-token' },
        { type: 'request_uninstall', account: '1234' },
        { type: 'cancel_uninstall', actionId: 1, account: '1234' },
        { type: 'logout' },
        { type: 'force_sync' },
        { type: 'pick_app' },
    ];
    for (const message of worst) {
        try {
            handlers.kestrelune.postMessage(message);
        } catch (error) {
            // This frame has no such handler.
        }
    }
    try {
        handlers.kestreluneNav.postMessage({ type: 'take_pending_navigation' }).then((answer) => {
            window.stolen = answer;
            if (answer)
                handlers.kestrelune.postMessage({ type: 'stolen-navigation' });
        });
    } catch (error) {
        // Nor this one.
    }
}

// What a page may try so that it passes for another.
function disguise() {
    const attempts = [
        () => Object.defineProperty(window, 'origin', { value: 'https://www.example.com' }),
        () => { window.webkit.messageHandlers.kestrelune.postMessage = () => {}; },
        () => { delete window.webkit.messageHandlers.kestrelune; },
        () => { window.webkit = { messageHandlers: {} }; },
        () => { JSON.stringify = () => '{"type":"force_sync"}'; },
        () => { Object.prototype.toJSON = () => ({ type: 'force_sync' }); },
        () => { Object.defineProperty(window, 'parent', { value: window }); },
    ];
    for (const attempt of attempts) {
        try {
            attempt();
        } catch (error) {
            // It is not to be had.
        }
    }
}

const stringify = JSON.stringify;
postTheWorst();
disguise();
postTheWorst();
// What looks at this page from outside needs these.
JSON.stringify = stringify;
delete Object.prototype.toJSON;
