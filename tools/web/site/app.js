// Puts the page together.

import { byId } from './text.js';
import { isInsideApp, post, record } from './bridge.js';
import { readSession, signOut, startAccount } from './account.js';
import { startDeveloper } from './developer.js';
import { startHome } from './home.js';
import { startSettings } from './settings.js';
import { acknowledgeAgain, startSetup, takeNavigation } from './setup.js';

const demoAccount = '1234';

// What a message carries besides its type.
const contents = {
    pick_app: () => ({ platform: 'macos' }),
    request_uninstall: () => ({ account: demoAccount }),
    cancel_uninstall: () => {
        const text = byId('action-id').value.trim();
        return { ...(/^[0-9]+$/.test(text) ? { actionId: Number(text) } : {}), account: demoAccount };
    },
    set_locale_preference: () => ({ preference: byId('locale').value }),
};

const others = { logout: signOut, take_pending_navigation: takeNavigation, ack_navigation: acknowledgeAgain };

function wireButtons() {
    for (const button of document.querySelectorAll('[data-message], [data-navigation]')) {
        const type = button.dataset.message ?? button.dataset.navigation;
        if (button.closest('#developer'))
            button.title = type;
        button.disabled = !isInsideApp;
        button.addEventListener('click', others[type] ?? (() => post({ type, ...contents[type]?.() })));
    }
}

startDeveloper();
wireButtons(); // Those of the steps change what they say, and are wired where they are made.
startHome();
startAccount();
startSetup();
startSettings();
byId('outside-note').hidden = isInsideApp;
for (const id of ['columns', 'settings'])
    byId(id).hidden = !isInsideApp;
takeNavigation();
for (const state of ['blocking_status', 'device_setup_state', 'updater_state', 'removal_state', 'notification_status'])
    post({ type: `get_${state}` });

// For a driver, which may go on from here.
window.demo = Object.defineProperty(record, 'session', { get: readSession });
