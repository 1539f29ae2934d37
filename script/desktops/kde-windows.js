// SPDX-License-Identifier: MIT
// Runs in KWin, and tells kde-driver.py its outcome. Before it stand two constants: request, title.
const windows = workspace.stackingOrder.filter(window => window.normalWindow || window.dialog);

const isHere = window => window.onAllDesktops || window.desktops.some(({id}) => id === workspace.currentDesktop.id);

// Whether the user sees all of it and types into it.
const isInFront = window =>
    window.active && !window.minimized && isHere(window) && window === windows[windows.length - 1];

const stateOf = window => isInFront(window) ? 'active' : '-';

const lineOf = window => [window.pid, stateOf(window), window.desktopFileName, window.caption].join('\t');

const actions = {
    box: window => {
        const {x, y, width, height} = window.clientGeometry;
        return [x, y, width, height].join(' ');
    },
    raise: window => {
        workspace.activeWindow = window;
        return '';
    },
    minimize: window => {
        window.minimized = true;
        return '';
    },
    away: window => {
        window.desktops = [workspace.desktops.find(({id}) => id !== workspace.currentDesktop.id)];
        return '';
    },
};

function outcome() {
    if (request === 'list')
        return windows.map(lineOf).join('\n');
    const window = windows.find(candidate => candidate.caption.startsWith(title));
    return window ? actions[request](window) : `no window ${title}`;
}

callDBus('net.tarvo.UsageMeter.Try', '/net/tarvo/UsageMeter/Try', 'net.tarvo.UsageMeter.Try', 'Answer', outcome());
