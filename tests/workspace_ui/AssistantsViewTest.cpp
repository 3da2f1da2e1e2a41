#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Sheet.h"
#include "appearance/controls/TextField.h"
#include "assistants/ui/ProviderCard.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include <QKeyEvent>

#include <algorithm>

namespace orvo::test {
namespace {

class AssistantsViewTest : public ScreenFixture {
protected:
    void openPage() {
        workspace().setDestination(Destination::Agents);
        screen();
    }
    /// As they stand on the page.
    QStringList names() {
        QList<ProviderCard*> cards;
        for (auto* const card : screen().findChildren<ProviderCard*>())
            if (card->isVisible()) cards.append(card);
        std::ranges::sort(cards, {},
                          [](const ProviderCard* card) { return std::pair(card->y(), card->x()); });
        QStringList names;
        for (const auto* card : std::as_const(cards))
            names.append(card->provider().name);
        return names;
    }
    TextField& field(const char* name) { return *find<TextField>(screen(), text(name)); }
    void type(const char* name, const QString& value) { field(name).setText(value); }
    bool canSave() { return find<OrvoButton>(screen(), text("Save connector"))->isEnabled(); }
    bool isClosed() { return !workspace().presentConnector() && !screen().findChild<Sheet*>(); }
    void fill(const QString& name, const QString& executable, const QString& command) {
        type("Display name", name);
        type("Executable name or absolute path", executable);
        type("Launch command", command);
    }
    const QList<Provider>& providers() { return workspace().assistants().providers(); }
};

TEST_F(AssistantsViewTest, ShowsEveryConnectorInItsOrder) {
    openPage();
    QStringList expected;
    for (const Provider& provider : providers())
        expected.append(provider.name);
    EXPECT_EQ(names(), expected);
    EXPECT_TRUE(shows(screen(), text("Checks sign-in status without sending AI requests.")));
}

TEST_F(AssistantsViewTest, ChecksConnectionsOnceAtATime) {
    install(text("codex"));
    openPage();
    ASSERT_TRUE(waitFor([&] { return !workspace().assistants().checkingConnections(); }));
    press(text("Check connections"));
    EXPECT_FALSE(find<OrvoButton>(screen(), text("Checking accounts…"))->isEnabled());
    workspace().assistants().refreshProviders();
    ASSERT_TRUE(waitFor([&] { return shows(screen(), text("Check connections")); }));
    EXPECT_TRUE(find<OrvoButton>(screen(), text("Check connections"))->isEnabled());
}

TEST_F(AssistantsViewTest, AddsConnectorsJustBeforeTheTerminal) {
    openPage();
    m_theme.setAccentHex(text("A797FF"));
    for (const QString& name : {text("Local <b>one</b>"), text("Local two")}) {
        press(text("Add connector"));
        EXPECT_FALSE(canSave());
        fill(name, text("no-such-tool "), text(" no-such-tool {prompt}"));
        ASSERT_TRUE(canSave());
        press(text("Save connector"));
        EXPECT_EQ(workspace().toast(), name + text(" configuration saved."));
        ASSERT_TRUE(waitFor([&] { return isClosed(); }));
    }
    const QStringList added = {text("Local <b>one</b>"), text("Local two"), text("Terminal")};
    EXPECT_TRUE(waitFor([&] { return names().mid(5) == added; }));
    const Provider& first = providers()[5];
    const Provider& second = providers()[6];
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(first.id, QUuid(first.id).toString(QUuid::WithoutBraces).toUpper());
    // Stored as typed, spaces included.
    EXPECT_EQ(first, (Provider{first.id, text("Local <b>one</b>"), text("Custom · local CLI connector"),
                               text("puzzlepiece.extension"), text("A797FF"), text("no-such-tool "),
                               text(" no-such-tool {prompt}"), QString()}));
}

TEST_F(AssistantsViewTest, TabGoesThroughThePageAsItIsRead) {
    openPage();
    Provider added = workspace().assistants().provider(text("codex"));
    added.id = text("added");
    added.name = text("Added last");
    workspace().assistants().addTemporary(added);
    // Made after everything else on the page, it comes before the Terminal's card all the same.
    ASSERT_TRUE(waitFor([&] { return shows(screen(), text("Added last")); }));
    find<QAbstractButton>(screen(), text("Add connector"))->setFocus();
    QStringList cards;
    for (int step = 0; step < 60; ++step) {
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QCoreApplication::sendEvent(screen().window()->focusWidget(), &tab);
        const QWidget* at = screen().window()->focusWidget();
        if (nameOf(*at) != text("Configure")) continue;
        while (!qobject_cast<const ProviderCard*>(at))
            at = at->parentWidget();
        const QString name = qobject_cast<const ProviderCard*>(at)->provider().name;
        if (cards.contains(name)) break;
        cards.append(name);
    }
    EXPECT_EQ(cards, names());
}

TEST_F(AssistantsViewTest, KeepsWhatIsNotEdited) {
    openPage();
    const Provider before = workspace().assistants().provider(text("codex"));
    workspace().editConnector(before);
    EXPECT_TRUE(shows(screen(), text("Configure Codex")));
    EXPECT_EQ(field("Launch command").text(), before.template_);
    type("Display name", text("My Codex"));
    press(text("Cancel"));
    ASSERT_TRUE(waitFor([&] { return isClosed(); }));
    EXPECT_EQ(workspace().assistants().provider(text("codex")), before);

    workspace().editConnector(before);
    type("Display name", text("My Codex"));
    press(text("Save connector"));
    Provider expected = before;
    expected.name = text("My Codex");
    EXPECT_EQ(workspace().assistants().provider(text("codex")), expected);
}

TEST_F(AssistantsViewTest, SaysWhatIsWrongWithALaunchCommand) {
    openPage();
    press(text("Add connector"));
    fill(text("x"), text("x"), text("x \"{prompt}\""));
    EXPECT_TRUE(shows(
        screen(), text("Place {prompt} outside quotes and without a backslash. Orvo supplies the quotes.")));
    EXPECT_TRUE(field("Launch command").isInvalid());
    EXPECT_FALSE(canSave());
    Q_EMIT field("Launch command").returnPressed();
    EXPECT_TRUE(workspace().presentConnector());
    // Spaces are not trimmed away.
    type("Launch command", text("   "));
    EXPECT_TRUE(canSave());
    EXPECT_FALSE(field("Launch command").isInvalid());
    type("Executable name or absolute path", QString());
    EXPECT_FALSE(canSave());
}

TEST_F(AssistantsViewTest, LinksToDocumentationWhileItIsAWebAddress) {
    openPage();
    press(text("Add connector"));
    const QString link = text("Provider documentation ↗");
    for (const char* address :
         {"", "HTTPS://example.org", "ftp://example.org", "https", "https://a b", "example.org"}) {
        type("Documentation URL (optional)", text(address));
        EXPECT_FALSE(shows(screen(), link)) << address;
    }
    type("Documentation URL (optional)", text("http://example.org/docs"));
    ASSERT_TRUE(shows(screen(), link));
    press(link);
    EXPECT_EQ(m_launcher.addresses(), QList<QUrl>{QUrl(text("http://example.org/docs"))});
}

TEST_F(AssistantsViewTest, ExplainsTheProfileOfZaiOnly) {
    openPage();
    workspace().editConnector(workspace().assistants().provider(text("zai")));
    EXPECT_TRUE(shows(screen(), text("Keep a separate Z.ai profile")));
    EXPECT_EQ(field("Launch command").placeholderText(),
              text("claude --settings /path/to/zai-settings.json {prompt}"));
    workspace().dismissConnector();
    ASSERT_TRUE(waitFor([&] { return isClosed(); }));
    workspace().editConnector(workspace().assistants().provider(text("codex")));
    EXPECT_FALSE(shows(screen(), text("Keep a separate Z.ai profile")));
    EXPECT_EQ(field("Launch command").placeholderText(), text("opencode {prompt}"));
}

}  // namespace
}  // namespace orvo::test
