// The drawer for developers: every message with its button, every event, and what the page knows.

import { byId, clockTime, compact, element } from './text.js';
import { isInsideApp, names, on, whenHeard, whenSent } from './bridge.js';

const mostListedEvents = 100;

const groups = [
    ['Status', [['get_blocking_status', 'Blocking status'], ['force_sync', 'Sync now'],
        ['get_device_setup_state', 'Device setup']]],
    ['Components', [['setup_install_service', 'Install service'], ['setup_update_service', 'Update service'],
        ['setup_activate_filter', 'Activate filter'], ['setup_open_filter_settings', 'Filter settings'],
        ['setup_open_login_items', 'Login items'], ['remove_network_filter', 'Remove filter'],
        ['setup_onboarding_started', 'Onboarding starts'], ['setup_onboarding_ended', 'Onboarding ends'],
        ['open_extension_store', 'Browser extension'], ['pick_app', 'Pick an app']]],
    ['Updates', [['get_updater_state', 'Updater state'], ['updater_check_now', 'Check now'],
        ['set_updater_auto_checks_on', 'Automatic on'], ['set_updater_auto_checks_off', 'Automatic off']]],
    ['Notifications', [['get_notification_status', 'Permission'],
        ['request_notification_permission', 'Ask for permission'], ['open_notification_settings', 'Open settings']]],
    ['Removal', [['get_removal_state', 'Removal state'], ['request_uninstall', 'Request removal'],
        ['cancel_uninstall', 'Cancel removal']]],
];
const navigations = [['take_pending_navigation', 'Take pending'], ['ack_navigation', 'Acknowledge last']];

function makeButtons(legend, buttons, kind) {
    const group = element('fieldset');
    group.append(element('legend', '', legend));
    for (const [type, label] of buttons) {
        const button = element('button', '', label);
        button.type = 'button';
        button.dataset[kind] = type;
        group.append(button);
    }
    byId('messages').append(group);
    return group;
}

function makeMessages() {
    for (const [legend, buttons] of groups) {
        const group = makeButtons(legend, buttons, 'message');
        if (legend !== 'Removal')
            continue;
        const label = element('label', 'inline', 'of action ');
        const input = element('input');
        Object.assign(input, { id: 'action-id', type: 'text', inputMode: 'numeric', size: 6, placeholder: 'none' });
        label.append(input);
        group.append(label);
    }
    makeButtons('Navigation', navigations, 'navigation');
}

function showPairs(id, value) {
    const entries = value && typeof value === 'object' ? Object.entries(value) : [];
    const rows = entries.map(([name, entry]) => {
        const row = element('div');
        row.append(element('dt', '', name), element('dd', '', typeof entry === 'string' ? entry : compact(entry)));
        return row;
    });
    byId(id).replaceChildren(...rows.length ? rows : [element('div', 'quiet', 'Not told yet')]);
}

const facts = [['device', 'This device'], [names.setup, 'Set-up'], [names.updater, 'Updates'],
    [names.notifications, 'Notifications'], [names.removal, 'Removal']];

function makeFacts() {
    for (const [id, title] of facts) {
        const list = element('dl');
        list.id = `fact-${id}`;
        byId('facts').append(element('h4', '', title), list);
        showPairs(list.id, undefined);
    }
    if (!isInsideApp)
        return;
    showPairs('fact-device', {
        name: window.__kestreluneDevice?.name,
        id: window.__kestreluneDevice?.id,
        version: window.kestreluneVersion,
        mac: window.isKestreluneMac,
        capabilities: window.kestreluneCapabilities,
    });
}

let newest = null;
let heard = 0;

// An event that says the same as the one before is counted there.
function listEvent(name, detail, time) {
    const text = compact(detail);
    byId('event-count').textContent = String(++heard);
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
    head.append(element('span', 'name', name), repeat, clock);
    item.append(head);
    if (text && text !== 'null')
        item.append(element('code', '', text));
    const list = byId('events');
    list.prepend(item);
    while (list.children.length > mostListedEvents)
        list.lastElementChild.remove();
    newest = { name, text, times: 1, repeat, clock };
}

function showPickedApp(detail) {
    const icon = byId('picked-icon');
    const hasIcon = typeof detail?.icon === 'string' && detail.icon.startsWith('data:image/');
    icon.hidden = !hasIcon;
    if (hasIcon)
        icon.src = detail.icon;
    byId('picked-name').textContent = detail?.name ?? 'No app picked';
    byId('picked-id').textContent = detail?.bundle_id ?? '';
}

async function dictate() {
    const answer = byId('dictation');
    answer.textContent = 'asking';
    try {
        const stream = await navigator.mediaDevices.getUserMedia({ audio: true });
        stream.getTracks().forEach((track) => track.stop());
        answer.textContent = 'granted';
    } catch (error) {
        answer.textContent = `denied (${error.name})`;
    }
}

export function startDeveloper() {
    makeMessages();
    makeFacts();
    whenSent((type, trouble) => {
        const time = clockTime(Date.now());
        byId('sent').textContent = trouble ? `${time} ${type} failed: ${trouble}` : `${time} Sent ${type}`;
    });
    whenHeard((name, detail, time) => {
        listEvent(name, detail, time);
        if (byId(`fact-${name}`))
            showPairs(`fact-${name}`, detail);
    });
    on(names.picked, showPickedApp);
    byId('dictate').addEventListener('click', dictate);
    byId('redirect').addEventListener('click', () => { location.href = 'https://example.org/'; });
}
