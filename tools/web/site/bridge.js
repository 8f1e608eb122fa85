// The two message handlers and the events of the client.

const mostKept = 100;
const eventPrefix = 'kestrelune_';

const handlers = window.webkit?.messageHandlers;
const bridge = handlers?.kestrelune;
const navigationBridge = handlers?.kestreluneNav;

export const isInsideApp = Boolean(bridge);

// What a driver may read, and the drawer for developers shows.
export const record = {
    events: [], // { name, detail, time } of each, oldest first.
    messages: [], // What was posted, oldest first.
    navigations: [], // The navigations that were taken.
    isInsideApp,
};

export function keep(list, item) {
    list.push(item);
    if (list.length > mostKept)
        list.shift();
}

const sentListeners = [];
const eventListeners = [];
// `listener(type, trouble)` for each message; `listener(name, detail, time)` for each event, before it is acted on.
export const whenSent = (listener) => sentListeners.push(listener);
export const whenHeard = (listener) => eventListeners.push(listener);
const tellSent = (type, trouble) => sentListeners.forEach((listener) => listener(type, trouble));

export function post(message) {
    if (!bridge)
        return;
    keep(record.messages, message);
    try {
        // Some hosts return a promise even though there is no answer.
        Promise.resolve(bridge.postMessage(message)).catch((error) => tellSent(message.type, error));
        tellSent(message.type);
    } catch (error) {
        tellSent(message.type, error);
    }
}

// The answer; undefined when there is none.
export async function ask(message) {
    if (!navigationBridge)
        return undefined;
    keep(record.messages, message);
    try {
        const answer = await navigationBridge.postMessage(message);
        tellSent(message.type);
        return answer;
    } catch (error) {
        tellSent(message.type, error);
        return undefined;
    }
}

// Calls `react(detail, time)` for each event of this name, which is given without its prefix.
export function on(name, react) {
    window.addEventListener(eventPrefix + name, (event) => {
        const time = Date.now();
        keep(record.events, { name: event.type, detail: event.detail, time });
        eventListeners.forEach((listener) => listener(name, event.detail, time));
        react(event.detail, time);
    });
}

export const names = {
    status: 'blocking_status',
    notifications: 'notification_status',
    setup: 'device_setup_state',
    removal: 'removal_state',
    updater: 'updater_state',
    picked: 'app_picked',
    token: 'token_refresh',
    onboarding: 'request_onboarding_state',
    navigation: 'navigation_pending',
};
