// Who is signed in. The account is the page's own; the client gets its token.

import { byId, setText } from './text.js';
import { names, on, post } from './bridge.js';

const sessionKey = 'demo.session';

export function readSession() {
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

function greeting(hour) {
    if (hour < 5 || hour >= 22)
        return 'Good night';
    if (hour < 12)
        return 'Good morning';
    return hour < 18 ? 'Good afternoon' : 'Good evening';
}

function showGreeting() {
    const now = new Date();
    const name = readSession()?.name;
    setText('greeting', greeting(now.getHours()) + (name ? `, ${name}` : ''));
    setText('date', now.toLocaleDateString('en', { weekday: 'long', month: 'long', day: 'numeric' }));
}

function showSession() {
    const session = readSession();
    byId('sign-in-card').hidden = Boolean(session);
    byId('signed-in').hidden = !session;
    showGreeting();
    if (!session)
        return;
    setText('avatar', [...session.name][0]?.toUpperCase() ?? '');
    setText('account-name', session.name);
    const device = window.__kestreluneDevice?.name ?? 'this device';
    setText('account-detail', session.isBound ? `Bound to ${device}` : 'Signed in');
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

export function signOut() {
    localStorage.removeItem(sessionKey);
    showSession();
    byId('name').focus();
    post({ type: 'logout' });
}

export function startAccount() {
    on(names.token, postToken);
    byId('sign-in-form').addEventListener('submit', signIn);
    showSession();
    setInterval(showGreeting, 60000);
}
