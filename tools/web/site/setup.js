// The steps by which this computer is set up, each with its state and one button.

import { byId, element, setText } from './text.js';
import { ask, isInsideApp, keep, names, on, post, record } from './bridge.js';
import { setupHeard } from './home.js';

const wait = (text) => ({ state: 'wait', text });
const done = (text) => ({ state: 'done', text });
const todo = (text, label, message) => ({ state: 'todo', text, label, message });

const service = {
    running: done('Running'),
    checking: wait('Checking…'),
    starting: wait('Starting…'),
    notInstalled: todo('It does the blocking. An administrator’s password is asked for.', 'Install',
        'setup_install_service'),
    notRunning: todo('Installed, but not running', 'Restart', 'setup_install_service'),
    unreachable: todo('It does not answer', 'Restart', 'setup_install_service'),
    turnedOffInSettings: todo('Turned off in System Settings', 'Open Settings', 'setup_open_login_items'),
};

const filter = {
    on: done('On'),
    checking: wait('Checking…'),
    cantCheck: wait('macOS does not say how it is'),
    awaitingApproval: todo('Waits for your approval', 'Open Settings', 'setup_open_filter_settings'),
    off: todo('Holds websites back in every browser', 'Turn on', 'setup_activate_filter'),
};

const notifications = {
    authorized: done('Allowed'),
    provisional: done('Delivered quietly'),
    notDetermined: todo('For reminders and low coins', 'Allow', 'request_notification_permission'),
    denied: todo('Not allowed', 'Open Settings', 'open_notification_settings'),
};

const extension = {
    ...todo('Optional: explains a blocked page in the browser', 'Get it', 'open_extension_store'),
    state: 'extra',
};

const known = { setup: null, authorization: null };

const marks = { done: '✓', wait: '…', todo: '!', extra: '+' };
const markNames = { done: 'done', wait: 'please wait', todo: 'to do', extra: 'optional' };
const running = { setup_install_service: 'Installing…', setup_update_service: 'Updating…' };

function lookUp(table, word) {
    return typeof word === 'string' && Object.hasOwn(table, word) ? table[word] : wait('Not known yet');
}

function steps() {
    const setup = known.setup;
    const result = [
        ['service', 'Blocking service', lookUp(service, setup?.service)],
        ['filter', 'Content filter', lookUp(filter, setup?.filter)],
        ['notifications', 'Notifications', lookUp(notifications, known.authorization)],
        ['extension', 'Browser extension', extension],
    ];
    const text = running[setup?.running];
    if (text)
        result[0][2] = wait(text);
    if (setup?.running === 'setup_activate_filter' && setup.filter !== 'on')
        result[1][2] = wait('Turning on…');
    return result;
}

function isOffered(step) {
    if (!step.message || !isInsideApp)
        return false;
    const actions = known.setup?.actions;
    return !step.message.startsWith('setup_') || (Array.isArray(actions) && actions.includes(step.message));
}

function makeStep(id, title) {
    const item = element('li');
    item.id = `step-${id}`;
    const words = element('div', 'words');
    const head = element('strong', '', title);
    const state = element('span', 'state');
    words.append(head, state);
    const mark = element('span', 'mark');
    mark.setAttribute('role', 'img');
    const button = element('button');
    button.type = 'button';
    button.addEventListener('click', () => post({ type: button.dataset.message }));
    item.append(mark, words, button);
    byId('steps').append(item);
    return item;
}

// The elements stay, so that the keyboard's focus does too.
function showStep(id, title, step) {
    const item = byId(`step-${id}`) ?? makeStep(id, title);
    item.dataset.state = step.state;
    const mark = item.querySelector('.mark');
    mark.textContent = marks[step.state];
    mark.setAttribute('aria-label', markNames[step.state]);
    item.querySelector('.state').textContent = step.text;
    const button = item.querySelector('button');
    button.hidden = !isOffered(step);
    button.textContent = step.label ?? '';
    button.dataset.message = step.message ?? '';
    button.setAttribute('aria-label', `${step.label ?? ''}: ${title}`);
    button.className = step.state === 'todo' ? 'primary' : '';
    // One of the actions that change a component runs at a time.
    button.disabled = Boolean(known.setup?.running) && button.dataset.message.startsWith('setup_');
}

function showSteps() {
    const all = steps();
    for (const [id, title, step] of all)
        showStep(id, title, step);
    const needed = all.filter(([, , step]) => step.state !== 'extra');
    const finished = needed.filter(([, , step]) => step.state === 'done').length;
    setText('setup-progress', finished === needed.length ? 'All set' : `${finished} of ${needed.length}`);
    setText('navigation', finished === needed.length
        ? 'A link has led you here. Everything is set up.'
        : 'A link has led you here. Go through the steps at your own pace.');
    byId('setup').dataset.state = finished === needed.length ? 'done' : 'todo';
}

function setupArrived(detail) {
    known.setup = detail && typeof detail === 'object' ? detail : null;
    showSteps();
    setupHeard(known.setup?.running === 'setup_install_service' ? 'installing' : known.setup?.service);
}

// --- A link that leads here

let lastToken;

export async function takeNavigation() {
    const navigation = await ask({ type: 'take_pending_navigation' });
    if (!navigation)
        return;
    keep(record.navigations, navigation);
    lastToken = navigation.token;
    byId('guide').hidden = false;
    byId('setup').scrollIntoView({ block: 'start' });
    byId('setup').focus({ preventScroll: true });
    await ask({ type: 'ack_navigation', token: navigation.token });
    post({ type: 'setup_onboarding_started' });
}

export const acknowledgeAgain = () => ask({ type: 'ack_navigation', token: lastToken ?? '' });

function endGuide() {
    byId('guide').hidden = true;
    byId('setup').focus();
    post({ type: 'setup_onboarding_ended' });
}

export function startSetup() {
    on(names.setup, setupArrived);
    on(names.notifications, (detail) => {
        known.authorization = detail?.authorization;
        showSteps();
    });
    on(names.onboarding, () => post({ type: 'get_device_setup_state' }));
    on(names.navigation, takeNavigation);
    byId('guide-done').addEventListener('click', endGuide);
    showSteps();
}
