"""Uses the controls of the window one after the other, and remembers which ones it has seen and not used."""
import re
import time

from desktop import Atspi, Program, set_text, showing, text_of, wait_for

# What a person can do something with. A scroll bar belongs to what it scrolls.
USABLE = {"push button", "toggle button", "check box", "radio button", "combo box", "slider", "list item", "page tab",
          "menu item", "terminal", "link"}
# Where the description tells a state and not which of several controls of one name it is.
DESCRIBED_BY_STATE = {"Workspace", "Background", "Accent color", "Run"}
# Titles that controls have for a moment, during which they cannot be used.
BUSY = {"Preparing…", "Checking accounts…", "Making plan…", "Sending step…"}


LEAVES = {"label", "text", "terminal", "check box", "radio button", "slider", "page tab", "list item"}


def children(node, first=0):
    for index in range(first, node.get_child_count()):
        child = node.get_child_at_index(index)
        if child is not None:
            yield child


def still_shows(node):
    try:
        return showing(node)
    except Exception:  # gone altogether
        return False


class Control:
    def __init__(self, node, region):
        self.node = node
        self.role = node.get_role_name()
        self.name = node.get_name()
        about = node.get_description()
        if self.role in ("page tab", "combo box") or self.name in DESCRIBED_BY_STATE or about == self.name:
            about = ""
        self.about = about
        # A number in a title is no other control.
        self.key = (region, self.role, re.sub(r"\d+", "n", self.name), about)

    def __repr__(self):
        region, role, name, about = self.key
        return f"{region}: {role} {name!r}" + (f" ({about})" if about else "")


class Walk:
    def __init__(self, program):
        self.program = program
        self.page = ""
        self.seen = {}
        self.used = set()
        self.texts = set()

    # What there is.

    def look(self, everywhere=True):
        """The controls that show; takes note of them and of all texts. Everywhere is the sidebar too, which takes
        long and changes seldom."""
        while True:
            controls = self.look_once(everywhere)
            # The window goes on while it is looked at: what belongs to no one page is looked at again.
            if self.page == self.page_now():
                break
        new = [control for control in controls if control.key not in self.seen]
        # The header changes a moment before the page: what is going with the page before it is not of this one.
        if new:
            time.sleep(0.1)
        gone = {control.key for control in new if not still_shows(control.node)}
        for control in controls:
            if control.key not in gone:
                self.seen[control.key] = control
        nameless = [control for control in controls if not control.name]
        assert not nameless, f"controls without a name: {nameless}"
        return controls

    def page_now(self):
        """The first thing in the header."""
        header = self.program.application().get_child_at_index(0).get_child_at_index(0).get_child_at_index(1)
        return header.get_child_at_index(0).get_name()

    def look_once(self, everywhere):
        self.texts = set()
        self.page = self.page_now()
        controls = []
        application = self.program.application()
        for index in range(application.get_child_count()):
            window = application.get_child_at_index(index)
            if not showing(window):
                continue
            if window.get_name() == "Orvo AI":
                sidebar, *others = children(window.get_child_at_index(0))
                if everywhere:
                    controls += self.look_below(sidebar, "Window")
                for part in others:
                    controls += self.look_below(part, self.page if part.get_role_name() == "layered pane" else "Window")
                for part in children(window, first=1):
                    menus = part.get_role_name() == "menu bar"
                    controls += self.look_below(part, "Menus" if menus else self.page)
            elif window.get_name() in ("Orvo desktop companion", "Orvo companion controls"):
                controls += self.look_below(window, window.get_name())
            # The toolkit's own panels for files and colours are not ours to walk.
        return controls

    def look_below(self, node, region):
        found = []
        for child in children(node):
            if not showing(child):
                continue
            role = child.get_role_name()
            if role != "filler":
                self.texts.add(child.get_name())
            if role in USABLE or self.is_field(child, role):
                found.append(Control(child, region))
            if role not in LEAVES:
                found += self.look_below(child, region)
        return found

    @staticmethod
    def is_field(node, role):
        """Text that can be written; text that can only be read must have a name all the same."""
        states = node.get_state_set()
        if role != "text" or not states.contains(Atspi.StateType.FOCUSABLE):
            return False
        assert node.get_name(), "a text without a name can take the focus"
        return states.contains(Atspi.StateType.EDITABLE)

    def show_texts(self, *texts):
        """All of these show at once, each word for word."""
        def missing():
            self.look()
            return [text for text in texts if text not in self.texts]
        try:
            wait_for("texts", lambda: not missing(), limit=10)
        except AssertionError:
            raise AssertionError(f"{self.page} lacks {missing()}; it shows {sorted(self.texts)}") from None

    def shows(self, wanted):
        if callable(wanted):
            wait_for(getattr(wanted, "__doc__", None) or "the effect", wanted)
        elif wanted is not None:
            self.program.find(name=wanted)

    # What is done.

    def use(self, name, role="push button", about=None):
        """That control, which counts as used from now on."""
        def matching():
            for everywhere in (False, True):
                found = [control for control in self.look(everywhere)
                         if (control.role, control.name) == (role, name) and about in (None, control.about)]
                if found:
                    return found
            return []
        controls = wait_for(f"{role} {name!r} {about or ''}", matching)
        assert len({control.key for control in controls}) == 1 or about is not None, f"which of {controls}?"
        self.used.add(controls[0].key)
        return controls[0].node

    def press(self, name, shows=None, about=None, role="push button"):
        Program.do(self.use(name, role, about))
        self.shows(shows)

    def toggle(self, name, role="check box", shows=None, about=None):
        node = self.use(name, role, about)
        Program.do(node, "Toggle")
        self.shows(shows)
        return node

    def fill(self, name, text, shows=None):
        node = self.use(name, "text")
        set_text(node, text)
        wait_for(f"the text in {name!r}", lambda: text_of(node) == text)
        self.shows(shows)
        return node

    def slide(self, name, value, shows=None):
        Atspi.Value.set_current_value(self.use(name, "slider"), value)
        self.shows(shows)

    def click(self, name, shows=None, role="push button"):
        """With the mouse."""
        self.program.click(self.use(name, role))
        self.shows(shows)

    def choose(self, name, shows=None):
        """An item of an open menu. The mouse closes the menu."""
        self.click(name, shows, role="menu item")

    def go(self, page):
        self.press(page, shows=lambda: (self.look(), self.page == page)[1])

    # What is left.

    def unused(self):
        return sorted((control for key, control in self.seen.items()
                       if key not in self.used and control.name not in BUSY), key=lambda control: control.key)
