"""What a person does with the agent on a desktop, and what is to come of it."""

import subprocess

from gi.repository import GLib
from PIL.Image import Resampling

from agent import Agent, Service
from basics import Fault, holds_within, wait_until
from bus import Bus
from desktop import AGENT, BROWSER, FOLDERS, must
from looking import beside, brightness, centre, changed_box, fits, row_centre, sharpness

LOG_IN, SETTINGS, QUIT = 'Log In', 'Download Folders', 'Quit'
END_WITHIN = 10  # seconds
SHARPER = 1.18  # times as sharp as what is only enlarged


class Flow:
    def __init__(self, desktop, say):
        self.desktop, self.say = desktop, say
        self.session = desktop.session
        self.cells = {}  # column: [(is it a fault, text)]
        self.pictures = {}

    def note(self, column, text):
        self.cells.setdefault(column, []).append((False, text))

    def fault(self, column, text):
        self.say(f'  FAULT {column}: {text}')
        self.cells.setdefault(column, []).append((True, text))

    def take(self, name):
        picture = self.desktop.quiet_picture()
        self.pictures[name] = picture
        return picture

    def attempt(self, column, step):
        """@return whether what follows can be tried."""
        self.say(f'  {column}: {step.__name__}')
        try:
            step()
            return True
        except (Fault, AssertionError, OSError, subprocess.SubprocessError, GLib.Error) as fault:
            self.fault(column, str(fault))
            try:
                self.pictures[f'fault-{step.__name__}'] = self.desktop.picture()
            except (Fault, OSError, subprocess.SubprocessError, GLib.Error) as other:
                self.say(f'  no picture: {other}')
        return False

    def run(self):
        self.start()
        try:
            if not self.attempt('icon', self.icon_appears):
                return
            if self.attempt('menu', self.log_in_by_menu) and self.attempt('windows in front', self.callback):
                self.attempt('notification and click', self.notification)
                if self.attempt('windows in front', self.settings_over_another):
                    self.attempt('windows in front', self.settings_from_behind)
                self.attempt('scaling', self.scaling)
                self.attempt('dark', self.dark)
                if self.desktop.left_click_is_told:
                    self.attempt('menu', self.left_click)
            self.attempt('quit', self.quit)
            self.attempt('session end', self.session_end)
        finally:
            self.service.process.terminate()
            self.bus.close()

    def start(self):
        self.desktop.prepare()
        self.session.start_bus(self.desktop.services)
        self.bus = self.desktop.bus = Bus(self.session.environment['DBUS_SESSION_BUS_ADDRESS'])
        self.service = Service(self.session)
        self.agent = Agent(self.session, self.service, self.bus)
        self.session.start('notifications', 'dbus-monitor', '--session', "interface='org.freedesktop.Notifications'")
        self.desktop.start()

    # the steps

    def icon_appears(self):
        self.empty = self.desktop.quiet_picture()
        self.agent.start()
        theme = self.desktop.theme_plugin
        must(self.agent.has_loaded(theme), f'the agent runs without {theme}, which the desktop has')
        if not self.desktop.has_tray:
            self.note('icon', 'no tray: none, and the agent works on')
            return
        wait_until(self.agent.item, 'the item at the tray')
        wait_until(lambda: changed_box(self.empty, self.desktop.picture(), self.desktop.panel()),
                   'the icon in the panel')
        self.icon = self.desktop.icon_box(changed_box(self.empty, self.desktop.quiet_picture(), self.desktop.panel()))
        # It says at once that nobody is logged in; later it would stand in the way of what is looked at.
        holds_within(lambda: changed_box(self.empty, self.desktop.picture(), self.desktop.notification_area()), 3)
        self.take('icon')
        self.note('icon', f'StatusNotifier item, {self.agent.platform()} program')

    def choose(self, label, kept=None):
        """Chooses an entry of the menu as a person does."""
        if not self.desktop.has_tray:
            return self.desktop.send_action({LOG_IN: 'link', SETTINGS: 'settings', QUIT: 'quit'}[label])
        before = self.desktop.quiet_picture()
        area = self.desktop.menu_area(self.icon)
        self.desktop.pointer.click(*centre(self.icon), self.desktop.menu_button)
        wait_until(lambda: changed_box(before, self.desktop.picture(), area), 'the menu')
        after = self.desktop.quiet_picture()
        if kept:
            self.pictures[kept] = after
        box = changed_box(before, after, area)
        self.desktop.pointer.click(*row_centre(box, self.agent.menu(), label, self.desktop.separator))

    def opened(self, words):
        file = self.session.folder / 'opened'
        return file.exists() and words in file.read_text()

    def log_in_by_menu(self):
        self.choose(LOG_IN, 'menu')
        wait_until(lambda: self.opened('browser '), 'the login page', 10)
        if self.desktop.has_tray:
            self.note('menu', f'by the {self.desktop.menu_button} button, {self.desktop.pointer.name}')
        else:
            self.note('menu', "the launcher's actions in its place")
        if not self.desktop.comes_to_front(BROWSER):
            self.fault('windows in front', f'the browser is not in front after "{LOG_IN}": {self.desktop.front()}')

    def callback(self):
        box = wait_until(lambda: self.desktop.window_box(BROWSER), "the browser's window")
        self.browser_alone = self.desktop.quiet_picture()
        self.desktop.pointer.click(*centre(box))
        wait_until(lambda: self.desktop.window_box(AGENT), 'the window for the folders', 15)
        in_front = self.desktop.comes_to_front(AGENT)
        self.take('callback')
        must(in_front, f'after the callback the window is behind {self.desktop.front()}')
        self.note('windows in front', 'folders after the callback')

    def notification(self):
        self.agent.act('confirm')
        self.agent.wait_for_run()
        area = self.desktop.notification_area()
        self.desktop.show_notifications()
        wait_until(lambda: changed_box(self.browser_alone, self.desktop.picture(), area), 'a notification', 10)
        picture = self.take('notification')
        changed = changed_box(self.browser_alone, picture, area)
        self.say(f'  notifications in {changed}')
        self.desktop.pointer.click(*self.desktop.notification_spot(changed))
        wait_until(lambda: self.opened('folders '), 'the folder, after the click', 10)
        self.note('notification and click', f'click opens the folder ({self.desktop.notifier})')
        must(not self.agent.verify(), f'the pictures are not as they should be: {self.agent.verify()[:3]}')
        self.desktop.leave_notifications()
        if self.desktop.comes_to_front(FOLDERS):
            self.note('windows in front', 'folder after the click')
        else:
            self.fault('windows in front', f'after the click the folder is behind {self.desktop.front()}')

    def settings_over_another(self):
        self.choose(SETTINGS)
        wait_until(lambda: self.desktop.window_box(AGENT), 'the settings', 10)
        in_front = self.desktop.comes_to_front(AGENT)
        self.take('settings')
        must(in_front, f'chosen from the menu, the settings are behind {self.desktop.front()}')
        self.note('windows in front', 'settings from the menu')

    def own_window(self):
        return wait_until(lambda: self.desktop.window_box(AGENT), 'a window of the agent')

    def end_agent(self):
        self.agent.act('quit')
        must(self.agent.ended_within(END_WITHIN) == 0, 'the agent does not end when asked to')

    def restart_agent(self):
        self.end_agent()
        self.agent.start()
        self.agent.act('settings')
        return self.own_window()

    def settings_from_behind(self):
        spot = beside(self.desktop.window_box(FOLDERS), self.own_window(), self.desktop.work_area(1))
        self.desktop.pointer.click(*spot)
        must(self.desktop.comes_to_front(FOLDERS), f'after a click on the folder {self.desktop.front()} is in front')
        self.choose(SETTINGS)
        if self.desktop.comes_to_front(AGENT):
            self.note('windows in front', 'settings again, from behind')
        else:
            self.pictures['fault-behind'] = self.desktop.picture()
            self.fault('windows in front', f'chosen again, the standing settings are behind {self.desktop.front()}')

    def close_others(self):
        """What is looked at next stands alone on the desktop."""
        for line in (self.session.folder / 'opened').read_text().splitlines():
            self.session.end(int(line.rsplit(maxsplit=1)[1]))
        wait_until(lambda: not any(map(self.desktop.window_box, (BROWSER, FOLDERS))), 'an end of the stand-ins')

    def reopen(self, restart=False):
        """@return the picture of the window opened anew, and what it covers there."""
        if restart:
            self.end_agent()
        else:
            self.agent.act('confirm')
        wait_until(lambda: not self.desktop.window_box(AGENT), 'an end of the window')
        empty = self.desktop.quiet_picture()
        if restart:
            self.agent.start()
        self.agent.act('settings')
        self.own_window()
        picture = self.desktop.quiet_picture()
        seen = changed_box(empty, picture, self.desktop.work_area(self.desktop.output_scale()))
        return picture, must(seen, 'the window is not to be seen')

    def scaling(self):
        """@raise Fault also for a window that is only enlarged, and so blurred."""
        self.close_others()
        small, seen = self.reopen()
        box = self.own_window()
        must(fits(seen, box, self.desktop.size), f'{box} is told of the window, {seen} is seen')
        self.desktop.set_scale(self.desktop.scale)
        try:
            at_once = self.looks_scaled(small, box)
        finally:
            self.desktop.set_scale(1)
        self.pictures['unscaled'], _ = self.reopen(restart=True)
        self.note('scaling', f'{self.desktop.scale} times, sharp' + ('' if at_once else ', from the next start on'))

    def looks_scaled(self, small, before):
        """@param small, before: the picture without scaling, and the window's box there.
        @return whether it did so in the process that ran before."""
        def is_scaled():
            return abs(self.desktop.output_scale() - self.desktop.scale) < 0.02
        must(holds_within(is_scaled, 5), f'the desktop is at {self.desktop.output_scale()} times')
        for restart in (False, True):
            picture, seen = self.reopen(restart)
            self.pictures['scaled' if restart else 'scaled-at-once'] = picture
            trouble = self.trouble_of_scaled(picture, seen, small, before)
            if not trouble:
                self.pictures['scaled'] = picture
                return not restart
            self.say(f'  {trouble}')
        raise Fault(trouble)

    def trouble_of_scaled(self, picture, seen, small, before):
        scale = self.desktop.output_scale()
        now = self.own_window()
        if not fits(seen, now, self.desktop.size, scale):
            return f'{now} is told of the window, {seen} is seen'
        if abs((now[2] - now[0]) / (before[2] - before[0]) / scale - 1) > 0.05:
            return f'{now} at {scale:.2f} times, {before} before'
        width, height = now[2] - now[0], min(now[3] - now[1], round(scale * (before[3] - before[1])))
        part = small.crop((*before[:3], before[1] + round(height / scale)))
        enlarged = part.resize((width, height), Resampling.BILINEAR)
        ratio = sharpness(picture.crop((*now[:3], now[1] + height))) / sharpness(enlarged)
        self.say(f'  {ratio:.2f} times as sharp as a window that is only enlarged')
        return '' if ratio > SHARPER else f'only {ratio:.2f} times as sharp as one that is enlarged'

    def dark(self):
        box = self.own_window()
        must(brightness(self.desktop.quiet_picture(), box) > 128, 'dark before it is asked for')
        self.desktop.set_dark()

        def is_dark():
            now = self.desktop.window_box(AGENT)
            return now and brightness(self.desktop.picture(), now) < 110
        live = holds_within(is_dark, 5)
        if not live:
            self.restart_agent()
            must(holds_within(is_dark, 5), 'the window stays light')
        self.take('dark')
        self.note('dark', 'at once' if live else 'from the next start on')

    def left_click(self):
        self.end_agent()
        self.agent.start()
        wait_until(self.agent.item, 'the item at the tray')
        self.desktop.quiet_picture()
        self.desktop.pointer.click(*centre(self.icon), 'left')
        wait_until(lambda: self.desktop.window_box(AGENT), 'a window after a left click')
        in_front = self.desktop.comes_to_front(AGENT)
        left, _, right, _ = self.own_window()
        self.take('left')
        must(right - left > 400, 'a left click shows the menu as a window')
        must(in_front, f'after a left click the window is behind {self.desktop.front()}')
        self.note('menu', 'the left one shows the window')

    def quit(self):
        self.choose(QUIT)
        status = self.agent.ended_within(END_WITHIN)
        must(status == 0, f'the agent ended with {status}')
        if self.desktop.has_tray:
            must(holds_within(lambda: not self.agent.item(), 5), 'its icon stays')
        self.note('quit', 'from the menu' if self.desktop.has_tray else 'by the action')

    def session_end(self):
        fetched = must(self.service.fetched(), 'nothing has been fetched before')
        self.agent.start()
        if self.desktop.has_tray:
            wait_until(self.agent.item, 'the item at the tray')
        self.desktop.log_out()
        status = self.agent.ended_within(END_WITHIN)
        must(status is not None, f'the agent runs on {END_WITHIN} s after the end of the session')
        must(status == self.desktop.end_status, f'the agent ends with {status}, not with {self.desktop.end_status}')
        self.next_start(fetched)
        self.note('session end', f'ends with {status}; the next start is linked, and a whole run fetches nothing again')

    def next_start(self, fetched):
        reported = len(self.service.ask('reports.json'))
        self.agent.set('PollingNormalWaitTime', 1)
        renewed = self.service.requests('RefreshToken')
        listed = self.service.requests('ListItems')
        self.agent.start(QT_QPA_PLATFORM='offscreen')
        # A run renews the login twice. The fourth time one is over, even if the session's last renewal counts, too.
        wait_until(lambda: self.service.requests('RefreshToken') >= renewed + 4, 'a whole run at the next start', 40)
        self.end_agent()
        must(self.service.requests('ListItems') > listed, 'the next start does not look through the account')
        must(self.service.fetched() == fetched, 'the next start fetches pictures again')
        must(len(self.service.ask('reports.json')) == reported, 'the next start reports pictures again')
        must(not self.agent.verify(), f'the pictures are not as they should be: {self.agent.verify()[:3]}')
