"""A GTK window with one text field, which takes the keyboard. Ctrl+S saves its text to the file that is named."""
import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402


def save(_widget, event, text):
    if event.keyval not in (Gdk.KEY_s, Gdk.KEY_S) or not event.state & Gdk.ModifierType.CONTROL_MASK:
        return False
    start, end = text.get_bounds()
    with open(sys.argv[1], "w", encoding="utf-8") as file:
        file.write(text.get_text(start, end, True))
    return True


window = Gtk.Window(title="GTK typing target", default_width=500, default_height=200)
editor = Gtk.TextView()
editor.connect("key-press-event", save, editor.get_buffer())
window.add(editor)
window.connect("destroy", Gtk.main_quit)
window.show_all()
Gtk.main()
