#include "platform/desktop/DesktopEntries.h"

#include <memory>

#include <gio/gdesktopappinfo.h>

namespace orvo {
namespace {

using Info = std::unique_ptr<GAppInfo, decltype([](GAppInfo* info) { g_object_unref(info); })>;

InstalledApplication describe(GAppInfo* info) {
    // An entry that lies outside the desktop's own folders is known by its file.
    const char* id = g_app_info_get_id(info);
    if (!id) id = g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(info));
    return {QString::fromUtf8(id), QString::fromUtf8(g_app_info_get_display_name(info))};
}

Info byID(const QByteArray& id) {
    GDesktopAppInfo* const found = id.startsWith('/') ? g_desktop_app_info_new_from_filename(id.constData())
                                                      : g_desktop_app_info_new(id.constData());
    return Info(found ? G_APP_INFO(found) : nullptr);
}

// What well-known applications of other systems are called here: the default program for a type or a scheme,
// or the first that is installed of some entries.
struct Alias {
    const char* identifier;
    const char* type;
    const char* scheme;
    std::initializer_list<const char*> entries;
};

const Alias aliases[] = {
    {"com.apple.textedit", "text/plain", nullptr, {}},
    {"com.apple.notes", "text/plain", nullptr, {}},
    {"com.apple.preview", "image/png", nullptr, {}},
    {"com.apple.music", "audio/mpeg", nullptr, {}},
    {"com.apple.finder", "inode/directory", nullptr, {}},
    {"com.apple.safari", nullptr, "https", {}},
    {"com.google.chrome", nullptr, "https", {"google-chrome.desktop", "chromium.desktop"}},
    {"com.apple.mail", nullptr, "mailto", {}},
    {"com.apple.terminal",
     nullptr,
     nullptr,
     {"org.gnome.Terminal.desktop", "org.gnome.Console.desktop", "org.kde.konsole.desktop",
      "xfce4-terminal.desktop", "debian-xterm.desktop"}},
    {"com.apple.calculator",
     nullptr,
     nullptr,
     {"org.gnome.Calculator.desktop", "org.kde.kcalc.desktop", "galculator.desktop"}},
    {"com.apple.systempreferences",
     nullptr,
     nullptr,
     {"gnome-control-center.desktop", "systemsettings.desktop", "xfce-settings-manager.desktop"}},
};

Info byAlias(const QByteArray& identifier) {
    for (const Alias& alias : aliases) {
        if (identifier.compare(alias.identifier, Qt::CaseInsensitive) != 0) continue;
        for (const char* entry : alias.entries) {
            if (Info found = byID(entry)) return found;
        }
        if (alias.type) return Info(g_app_info_get_default_for_type(alias.type, FALSE));
        if (alias.scheme) return Info(g_app_info_get_default_for_uri_scheme(alias.scheme));
    }
    return nullptr;
}

QString lastPiece(const QString& identifier) {
    return identifier.mid(identifier.lastIndexOf(u'.') + 1);
}

Info byLastPiece(const QString& identifier) {
    const QString wanted = lastPiece(identifier);
    if (wanted.isEmpty()) return nullptr;
    GList* const all = g_app_info_get_all();
    Info found;
    for (GList* item = all; item && !found; item = item->next) {
        GAppInfo* const info = G_APP_INFO(item->data);
        QString id = QString::fromUtf8(g_app_info_get_id(info));
        if (id.endsWith(u".desktop")) id.chop(8);
        const bool matches =
            wanted.compare(lastPiece(id), Qt::CaseInsensitive) == 0 ||
            wanted.compare(QString::fromUtf8(g_app_info_get_name(info)), Qt::CaseInsensitive) == 0;
        if (matches) found.reset(G_APP_INFO(g_object_ref(info)));
    }
    g_list_free_full(all, g_object_unref);
    return found;
}

}  // namespace

std::optional<InstalledApplication> DesktopEntries::find(const QString& identifier) {
    const QByteArray id = identifier.toUtf8();
    Info found;
    if (id.endsWith(".desktop")) found = byID(id);
    if (!found) found = byID(id + ".desktop");
    if (!found) found = byAlias(id);
    if (!found) found = byLastPiece(identifier);
    if (!found) return std::nullopt;
    return describe(found.get());
}

std::optional<InstalledApplication> DesktopEntries::first(std::initializer_list<const char*> ids) {
    for (const char* id : ids) {
        if (const Info found = byID(id)) return describe(found.get());
    }
    return std::nullopt;
}

QByteArray DesktopEntries::windowClass(const InstalledApplication& application) {
    const Info info = byID(application.id.toUtf8());
    if (!info) return {};
    return QByteArray(g_desktop_app_info_get_startup_wm_class(G_DESKTOP_APP_INFO(info.get())));
}

Result<qint64> DesktopEntries::launch(const InstalledApplication& application, const QUrl& address) {
    const Info info = byID(application.id.toUtf8());
    if (!info) {
        return failure(QStringLiteral("OrvoDesktop"),
                       tr("The application %1 is no longer installed.").arg(application.name));
    }
    const QByteArray text = address.toEncoded();
    GList node{const_cast<char*>(text.constData()), nullptr, nullptr};
    qint64 processID = 0;
    const auto keepID = [](GDesktopAppInfo*, GPid started, gpointer target) {
        *static_cast<qint64*>(target) = started;
    };
    GError* raised = nullptr;
    const gboolean launched = g_desktop_app_info_launch_uris_as_manager(
        G_DESKTOP_APP_INFO(info.get()), address.isEmpty() ? nullptr : &node, nullptr,
        // A set of flags, which the library has as an enumeration.
        // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange)
        static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD), nullptr, nullptr, keepID,
        &processID, &raised);
    if (launched) return processID;
    const QString reason = QString::fromUtf8(raised->message);
    g_error_free(raised);
    return failure(QStringLiteral("OrvoDesktop"), reason);
}

}  // namespace orvo
