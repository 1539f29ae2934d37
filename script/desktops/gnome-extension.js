// SPDX-License-Identifier: MIT
// An extension of GNOME Shell that lets gnome.sh see what the shell shows, and point and type as a user does, behind
// the lock screen, too. It serves methods over the session bus, each of which takes and returns one text.
import Clutter from 'gi://Clutter';
import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import Shell from 'gi://Shell';
import St from 'gi://St';
import * as Extension from 'resource:///org/gnome/shell/extensions/extension.js';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';
import * as PopupMenu from 'resource:///org/gnome/shell/ui/popupMenu.js';

const path = '/net/tarvo/UsageMeter/Try';
const methods = [
    'Start', 'Capture', 'Item', 'Icon', 'Label', 'Menu', 'Line', 'Windows', 'WindowBox', 'Change', 'Click', 'Press',
    'Notification', 'NotificationIcon',
];
const protocol = `<node><interface name="net.tarvo.UsageMeter.Try">
    ${methods.map(name => `<method name="${name}">
        <arg type="s" direction="in"/><arg type="s" direction="out"/>
    </method>`).join('\n')}
</interface></node>`;

// Longer than a frame, so that what moved below the pointer has heard of it.
const frame = 50;

const pause = milliseconds => new Promise(resolve => GLib.timeout_add(GLib.PRIORITY_DEFAULT, milliseconds, () => {
    resolve();
    return GLib.SOURCE_REMOVE;
}));

const device = type => Clutter.get_default_backend().get_default_seat().create_virtual_device(type);

const isOnScreen = actor => actor.mapped && actor.width > 0 && actor.height > 0;

const box = actor => [...actor.get_transformed_position(), ...actor.get_transformed_size()];

function middle(actor) {
    const [x, y, width, height] = box(actor);
    return `${x + width / 2} ${y + height / 2}`;
}

function item() {
    const found = Object.values(Main.panel.statusArea).filter(
        entry => entry._indicator?.id === 'usage-meter' && isOnScreen(entry));
    if (found.length !== 1)
        throw new Error(`there are ${found.length} items in the panel`);
    return found[0];
}

const linesIn = menu => menu?._getMenuItems().filter(line => line.visible) ?? [];

function describe(line, indent) {
    const {CHECK, DOT} = PopupMenu.Ornament;
    const mark = [CHECK, DOT].includes(line._ornament) ? '* ' : '';
    const text = line instanceof PopupMenu.PopupSeparatorMenuItem ? '--------' : mark + line.label.text;
    return [indent + text, ...linesIn(line.menu).flatMap(child => describe(child, `${indent}    `))];
}

const allLines = menu => linesIn(menu).flatMap(line => [line, ...allLines(line.menu)]);

function openedMenu() {
    const {menu} = item();
    if (!menu.isOpen)
        throw new Error('the menu is not open');
    return menu;
}

const windows = () => global.display.sort_windows_by_stacking(
    global.get_window_actors().map(actor => actor.meta_window)).filter(window => !window.is_override_redirect());

function windowOf(title) {
    const found = windows().find(window => window.title?.startsWith(title));
    if (!found)
        throw new Error(`there is no window ${title}`);
    return found;
}

// Whether the user sees all of it and types into it.
const isInFront = window => window.has_focus() && !window.minimized
    && window.get_workspace() === global.workspace_manager.get_active_workspace() && window === windows().at(-1);

const nameInTheme = icon => icon?.names?.find(name => new St.IconTheme().has_icon(name)) ?? '';

// A program is known by its name and its icon.
function windowLine(window) {
    const application = Shell.WindowTracker.get_default().get_window_app(window);
    const name = nameInTheme(application?.get_icon()) && application.get_id().replace(/\.desktop$/, '');
    const state = isInFront(window) ? 'active' : '-';
    return `${window.get_pid()}\t${state}\t${name}\t${window.title}`;
}

const changes = {
    raise: window => window.activate(global.get_current_time()),
    minimize: window => window.minimize(),
    away: window => window.change_workspace_by_index(global.workspace_manager.get_active_workspace_index() + 1, true),
};

class Driver {
    constructor() {
        this._pointer = device(Clutter.InputDeviceType.POINTER_DEVICE);
        this._keyboard = device(Clutter.InputDeviceType.KEYBOARD_DEVICE);
    }

    // Once the shell is ready, leaves the overview that it starts with.
    Start() {
        if (Main.layoutManager._startingUp || Main.overview.animationInProgress)
            throw new Error('the shell is not ready');
        Main.overview.hide();
        if (Main.overview.visible)
            throw new Error('the overview is shown');
        return '';
    }

    async Capture(file) {
        const stream = Gio.File.new_for_path(file).replace(null, false, Gio.FileCreateFlags.NONE, null);
        await new Shell.Screenshot().screenshot(false, stream);
        stream.close(null);
        return '';
    }

    Item() {
        return middle(item());
    }

    Label() {
        const label = item()._label;
        return label && isOnScreen(label) ? label.text : '';
    }

    Icon() {
        return box(item()._icon).join(' ');
    }

    Menu() {
        return linesIn(openedMenu()).flatMap(line => describe(line, '')).join('\n');
    }

    // The place of the line that begins like this.
    Line(text) {
        const found = allLines(openedMenu()).find(line => line.label?.text.startsWith(text) && isOnScreen(line));
        if (!found)
            throw new Error(`the menu shows no line ${text}`);
        return middle(found);
    }

    Windows() {
        return windows().map(windowLine).join('\n');
    }

    WindowBox(title) {
        const {x, y, width, height} = windowOf(title).get_frame_rect();
        return `${x} ${y} ${width} ${height}`;
    }

    Change(request) {
        const [, change, title] = request.match(/^(\w+) (.*)$/);
        changes[change](windowOf(title));
        return '';
    }

    async Click(place) {
        const [x, y] = place.split(' ').map(Number);
        const now = GLib.get_monotonic_time;
        for (const distance of [8, 4, 0]) {
            this._pointer.notify_absolute_motion(now(), x - distance, y);
            await pause(frame);
        }
        this._pointer.notify_button(now(), Clutter.BUTTON_PRIMARY, Clutter.ButtonState.PRESSED);
        await pause(frame);
        this._pointer.notify_button(now(), Clutter.BUTTON_PRIMARY, Clutter.ButtonState.RELEASED);
        await pause(frame);
        return '';
    }

    async Press(key) {
        const code = Clutter[`KEY_${key}`];
        this._keyboard.notify_keyval(GLib.get_monotonic_time(), code, Clutter.KeyState.PRESSED);
        await pause(frame);
        this._keyboard.notify_keyval(GLib.get_monotonic_time(), code, Clutter.KeyState.RELEASED);
        await pause(frame);
        return '';
    }

    Notification() {
        return middle(Main.messageTray._banner);
    }

    // What the banner's header shows, if the theme has it.
    NotificationIcon() {
        return nameInTheme(Main.messageTray._banner.notification.source.icon);
    }
}

export default class TryExtension extends Extension.Extension {
    enable() {
        const driver = new Driver();
        const served = Object.fromEntries(methods.map(name => [`${name}Async`, async ([request], invocation) => {
            try {
                invocation.return_value(new GLib.Variant('(s)', [await driver[name](request)]));
            } catch (error) {
                invocation.return_dbus_error('net.tarvo.UsageMeter.Try.Error', error.message);
            }
        }]));
        this._service = Gio.DBusExportedObject.wrapJSObject(protocol, served);
        this._service.export(Gio.DBus.session, path);
    }

    disable() {
        this._service.unexport();
        this._service = null;
    }
}
