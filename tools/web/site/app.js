'use strict';

// Lists may have hundreds of thousands of entries, and events may come for days.
const mostChips = 14;
const mostListedEvents = 100;
const mostKeptEvents = 1000;
const longestShownDetail = 400;

const sessionKey = 'demo.session';
const demoAccount = '1234';
const eventPrefix = 'kestrelune_';

const byId = (id) => document.getElementById(id);

// What a driver may read.
const demo = {
    events: [], // { name, detail, time } of each, oldest first.
    messages: [], // What was posted, oldest first.
    navigations: [], // The navigations that were taken.
    get session() { return readSession(); },
    isInsideApp: false,
};
window.demo = demo;

// --- The bridge

const handlers = window.webkit?.messageHandlers;
const bridge = handlers?.kestrelune;
const navigationBridge = handlers?.kestreluneNav;
demo.isInsideApp = Boolean(bridge);

function keep(list, item) {
    list.push(item);
    if (list.length > mostKeptEvents)
        list.shift();
}

function showSent(type, trouble) {
    const time = clockTime(Date.now());
    byId('sent').textContent = trouble ? `${time} ${type} failed: ${trouble}` : `${time} Sent ${type}`;
}

function post(message) {
    if (!bridge)
        return;
    keep(demo.messages, message);
    try {
        // Some hosts return a promise even though there is no answer.
        Promise.resolve(bridge.postMessage(message)).catch((error) => showSent(message.type, error));
        showSent(message.type);
    } catch (error) {
        showSent(message.type, error);
    }
}

async function ask(message) {
    if (!navigationBridge)
        return undefined;
    keep(demo.messages, message);
    try {
        const answer = await navigationBridge.postMessage(message);
        showSent(message.type);
        return answer;
    } catch (error) {
        showSent(message.type, error);
        return undefined;
    }
}

// --- Account

function readSession() {
    try {
        const session = JSON.parse(localStorage.getItem(sessionKey));
        return session && typeof session.name === 'string' ? session : null;
    } catch {
        return null;
    }
}

function postToken() {
    const session = readSession();
    if (!session)
        return;
    const message = { type: 'auth_token', token: `demo-token-${session.name}` };
    const device = window.__kestreluneDevice?.id;
    if (session.isBound && device !== undefined)
        message.device_id = device;
    post(message);
}

function showSession() {
    const session = readSession();
    byId('sign-in-form').hidden = Boolean(session);
    byId('signed-in').hidden = !session;
    if (!session)
        return;
    byId('avatar').textContent = [...session.name][0]?.toUpperCase() ?? '';
    byId('account-name').textContent = session.name;
    const device = window.__kestreluneDevice?.name ?? 'this device';
    byId('account-detail').textContent = session.isBound ? `Bound to ${device}` : 'Signed in';
}

function signIn(event) {
    event.preventDefault();
    const name = byId('name').value.trim();
    if (!name)
        return;
    localStorage.setItem(sessionKey, JSON.stringify({ name, isBound: byId('bind').checked }));
    showSession();
    byId('sign-out').focus();
    postToken();
}

function signOut() {
    localStorage.removeItem(sessionKey);
    showSession();
    byId('name').focus();
    post({ type: 'logout' });
}

// --- What the app tells

function clockTime(time) {
    return new Date(time).toLocaleTimeString('en-GB');
}

function compact(value) {
    const text = JSON.stringify(value) ?? '';
    return text.length > longestShownDetail ? `${text.slice(0, longestShownDetail)}…` : text;
}

function element(name, className, text) {
    const result = document.createElement(name);
    if (className)
        result.className = className;
    if (text !== undefined)
        result.textContent = text;
    return result;
}

let newest = null;

// An event that says the same as the one before is counted there.
function listEvent(name, detail, time) {
    const text = compact(detail);
    byId('event-count').textContent = String(Number(byId('event-count').textContent) + 1);
    byId('no-events').hidden = true;
    if (newest && newest.name === name && newest.text === text) {
        newest.times += 1;
        newest.repeat.textContent = `× ${newest.times}`;
        newest.clock.textContent = clockTime(time);
        return;
    }
    const item = element('li');
    const head = element('div', 'head');
    const clock = element('time', '', clockTime(time));
    const repeat = element('span', 'repeat');
    head.append(element('span', 'name', name.slice(eventPrefix.length)), repeat, clock);
    item.append(head);
    item.title = name;
    if (text && text !== 'null')
        item.append(element('code', '', text));
    const list = byId('events');
    list.prepend(item);
    while (list.children.length > mostListedEvents)
        list.lastElementChild.remove();
    newest = { name, text, times: 1, repeat, clock };
}

function showChips(list, count, values) {
    const texts = Array.isArray(values) ? values : [];
    const chips = texts.slice(0, mostChips).map((text) => element('li', '', String(text)));
    if (texts.length > mostChips)
        chips.push(element('li', 'more', `+ ${(texts.length - mostChips).toLocaleString('en')}`));
    if (!texts.length)
        chips.push(element('li', 'more', 'none'));
    byId(list).replaceChildren(...chips);
    byId(count).textContent = texts.length.toLocaleString('en');
}

function showBlocking(detail) {
    const isBlocking = detail?.blocking === true;
    byId('blocking').dataset.state = isBlocking ? 'blocking' : 'open';
    byId('blocking-state').textContent = isBlocking ? 'Blocking' : 'Not blocking';
    const energy = detail?.energy;
    byId('coins').textContent = typeof energy === 'number'
        ? energy.toLocaleString('en', { maximumFractionDigits: 1 })
        : '–';
    showChips('domains', 'domain-count', detail?.blockedDomains);
    showChips('apps', 'app-count', detail?.blockedApps);
}

function showPairs(id, value) {
    const entries = value && typeof value === 'object' ? Object.entries(value) : value === undefined ? [] : [['', value]];
    const rows = entries.map(([name, entry]) => {
        const row = element('div');
        row.append(element('dt', '', name), element('dd', '', typeof entry === 'string' ? entry : compact(entry)));
        return row;
    });
    byId(id).replaceChildren(...rows.length ? rows : [element('div', 'quiet', 'Not told yet')]);
}

function showPickedApp(detail) {
    const icon = byId('picked-icon');
    const hasIcon = typeof detail?.icon === 'string' && detail.icon.startsWith('data:image/');
    icon.hidden = !hasIcon;
    if (hasIcon)
        icon.src = detail.icon;
    byId('picked-name').textContent = detail?.name ?? 'No app picked';
    byId('picked-name').classList.toggle('quiet', !detail?.name);
    byId('picked-id').textContent = detail?.bundle_id ?? '';
}

function noteRemoval(detail) {
    showPairs('kestrelune_removal_state', detail);
    const removal = detail?.removal ?? detail;
    const action = removal?.actionId ?? removal?.action_id;
    byId('action-id').value = action ?? '';
}

// --- Navigation that waits for the page

let lastNavigationToken;

async function takeNavigation() {
    const navigation = await ask({ type: 'take_pending_navigation' });
    if (!navigation)
        return;
    keep(demo.navigations, navigation);
    lastNavigationToken = navigation.token;
    selectTab('tab-setup');
    byId('navigation').textContent = `The app has led here: ${navigation.target}`;
    await ask({ type: 'ack_navigation', token: navigation.token });
}

const reactions = {
    blocking_status: showBlocking,
    notification_status: (detail) => showPairs('kestrelune_notification_status', detail),
    device_setup_state: (detail) => showPairs('kestrelune_device_setup_state', detail),
    removal_state: noteRemoval,
    updater_state: (detail) => showPairs('kestrelune_updater_state', detail),
    app_picked: showPickedApp,
    token_refresh: postToken,
    request_onboarding_state: () => post({ type: 'get_device_setup_state' }),
    navigation_pending: takeNavigation,
};

for (const [name, react] of Object.entries(reactions)) {
    window.addEventListener(eventPrefix + name, (event) => {
        const time = Date.now();
        keep(demo.events, { name: event.type, detail: event.detail, time });
        listEvent(event.type, event.detail, time);
        react(event.detail);
    });
}

// --- Panels

const tabs = [...document.querySelectorAll('[role=tab]')];

function selectTab(id) {
    for (const tab of tabs) {
        const isSelected = tab.id === id;
        tab.setAttribute('aria-selected', String(isSelected));
        tab.tabIndex = isSelected ? 0 : -1;
        byId(tab.getAttribute('aria-controls')).hidden = !isSelected;
    }
}

function moveBetweenTabs(event) {
    const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (!step)
        return;
    const next = tabs[(tabs.indexOf(event.target) + step + tabs.length) % tabs.length];
    selectTab(next.id);
    next.focus();
    event.preventDefault();
}

for (const tab of tabs) {
    tab.addEventListener('click', () => selectTab(tab.id));
    tab.addEventListener('keydown', moveBetweenTabs);
}

// --- Buttons

const contents = {
    pick_app: () => ({ platform: 'macos' }),
    request_uninstall: () => ({ account: demoAccount }),
    cancel_uninstall: () => {
        const text = byId('action-id').value.trim();
        return { ...(/^[0-9]+$/.test(text) ? { actionId: Number(text) } : {}), account: demoAccount };
    },
    set_locale_preference: () => ({ preference: byId('locale').value }),
};

for (const button of document.querySelectorAll('[data-message], [data-navigation]')) {
    const type = button.dataset.message ?? button.dataset.navigation;
    button.title = type;
    if (type === 'logout')
        button.addEventListener('click', signOut);
    else if (type === 'take_pending_navigation')
        button.addEventListener('click', takeNavigation);
    else if (type === 'ack_navigation')
        button.addEventListener('click', () => ask({ type, token: lastNavigationToken ?? '' }));
    else
        button.addEventListener('click', () => post({ type, ...contents[type]?.() }));
}

byId('sign-in-form').addEventListener('submit', signIn);
byId('redirect').addEventListener('click', () => { location.href = 'https://example.org/'; });
byId('dictate').addEventListener('click', async () => {
    const answer = byId('dictation');
    answer.textContent = 'asking';
    try {
        const stream = await navigator.mediaDevices.getUserMedia({ audio: true });
        stream.getTracks().forEach((track) => track.stop());
        answer.textContent = 'granted';
    } catch (error) {
        answer.textContent = `denied (${error.name})`;
    }
});

// --- The start

function showHost() {
    const version = window.kestreluneVersion;
    byId('host').dataset.inside = String(demo.isInsideApp);
    byId('host-text').textContent = demo.isInsideApp
        ? `Inside the Brevanta app${version ? ` ${version}` : ''}`
        : 'Not inside the Brevanta app';
    if (!demo.isInsideApp)
        document.querySelectorAll('[data-message], [data-navigation], #sign-in').forEach((button) => { button.disabled = true; });
    showPairs('device', demo.isInsideApp
        ? {
            name: window.__kestreluneDevice?.name,
            id: window.__kestreluneDevice?.id,
            version,
            mac: window.isKestreluneMac,
            capabilities: window.kestreluneCapabilities,
        }
        : undefined);
}

showHost();
showSession();
showChips('domains', 'domain-count', []);
showChips('apps', 'app-count', []);
for (const id of ['kestrelune_device_setup_state', 'kestrelune_updater_state', 'kestrelune_notification_status', 'kestrelune_removal_state'])
    showPairs(id, undefined);
takeNavigation();
for (const type of ['get_blocking_status', 'get_device_setup_state', 'get_updater_state', 'get_removal_state', 'get_notification_status'])
    post({ type });
