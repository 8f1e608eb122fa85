// How things are put into words, and elements that hold them. Nothing that comes from outside is ever markup.

const longestList = 20;
const longestDetail = 400;

export const byId = (id) => document.getElementById(id);

export function element(name, className, text) {
    const result = document.createElement(name);
    if (className)
        result.className = className;
    if (text !== undefined)
        result.textContent = text;
    return result;
}

// Leaves what says so already alone: a reader's cursor and its announcements are not disturbed each second.
export function setText(id, text) {
    const target = byId(id);
    if (target.textContent !== text)
        target.textContent = text;
}

export const clockTime = (time) => new Date(time).toLocaleTimeString('en-GB');
export const shortTime = (time) => new Date(time).toLocaleTimeString('en-GB', { hour: '2-digit', minute: '2-digit' });
export const count = (number) => number.toLocaleString('en');
// Never more than there are.
export function coinsText(coins) {
    const step = Math.abs(coins) < 10 ? 10 : 1;
    return (Math.trunc(coins * step) / step).toLocaleString('en');
}
export const quantity = (number, one, many) => `${count(number)} ${number === 1 ? one : many}`;

// Milliseconds, as "3 minutes".
export function duration(milliseconds) {
    const seconds = Math.max(0, Math.floor(milliseconds / 1000));
    if (seconds < 60)
        return quantity(seconds, 'second', 'seconds');
    if (seconds < 3600)
        return quantity(Math.floor(seconds / 60), 'minute', 'minutes');
    if (seconds < 86400)
        return quantity(Math.floor(seconds / 3600), 'hour', 'hours');
    return quantity(Math.floor(seconds / 86400), 'day', 'days');
}

// JSON, short enough to be read: lists may have hundreds of thousands of entries.
export function compact(value) {
    const shorten = (key, entry) => Array.isArray(entry) && entry.length > longestList
        ? [...entry.slice(0, longestList), `and ${count(entry.length - longestList)} more`]
        : entry;
    const text = JSON.stringify(value, shorten) ?? '';
    return text.length > longestDetail ? `${text.slice(0, longestDetail)}…` : text;
}
