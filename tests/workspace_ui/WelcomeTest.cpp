#include "appearance/controls/OrvoButton.h"
#include "assistants/ui/ProviderCard.h"
#include "workspace_ui/ScreenFixture.h"

namespace orvo {
namespace {

using WelcomeTest = test::ScreenFixture;

ProviderCard* cardOf(const QWidget& root, const QString& provider) {
    for (ProviderCard* const card : root.findChildren<ProviderCard*>()) {
        if (test::shows(*card, provider)) return card;
    }
    return nullptr;
}

TEST_F(WelcomeTest, aCardOpensAReadyToolAndSetsUpAMissingOne) {
    install(QStringLiteral("claude"));
    workspace().openFolderForThisRun(makeProject(QStringLiteral("notes")));
    const ProviderCard* const missing = cardOf(screen(), QStringLiteral("Kimi Code"));
    ASSERT_TRUE(missing);
    EXPECT_TRUE(test::shows(*missing, QStringLiteral("Not installed")));
    test::find<OrvoButton>(*missing, QStringLiteral("Set up"))->click();
    EXPECT_EQ(workspace().editingProvider()->id, QStringLiteral("kimi"));
    workspace().dismissConnector();

    const ProviderCard* const ready = cardOf(screen(), QStringLiteral("Claude Code"));
    ASSERT_TRUE(ready);
    EXPECT_TRUE(test::shows(*ready, QStringLiteral("Installed · login unchecked")));
    test::find<OrvoButton>(*ready, QStringLiteral("Open"))->click();
    ASSERT_EQ(workspace().sessions().size(), 1u);
    EXPECT_EQ(workspace().sessions().front()->title(), QStringLiteral("Claude Code session"));
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Live sessions")))
        << "the deck takes the welcome's place";
    EXPECT_FALSE(test::shows(screen(), QStringLiteral("Connected tools")));
}

TEST_F(WelcomeTest, aToolThatIsInstalledLaterBecomesReadyOnItsCard) {
    const ProviderCard* const card = cardOf(screen(), QStringLiteral("Codex"));
    ASSERT_TRUE(card);
    EXPECT_TRUE(test::shows(*card, QStringLiteral("Set up")));
    install(QStringLiteral("codex"));
    workspace().refreshWorkspace();
    EXPECT_TRUE(test::shows(*card, QStringLiteral("Open")));
}

class FullCardTest : public test::ScreenFixture {
protected:
    QStringList buttonsOf(const QString& providerID) {
        m_card = std::make_unique<ProviderCard>(workspace().assistants().provider(providerID),
                                                ProviderCard::Form::Full, workspace(), m_launcher);
        m_card->show();
        QStringList names;
        for (const OrvoButton* const button : m_card->findChildren<OrvoButton*>())
            names.append(test::nameOf(*button));
        names.sort();
        return names;
    }

    std::unique_ptr<ProviderCard> m_card;
};

TEST_F(FullCardTest, offersWhatItsToolCanDo) {
    const auto expect = [this](const char* id, const char* names) {
        EXPECT_EQ(buttonsOf(QString::fromLatin1(id)).join(u'|').toStdString(), names) << id;
    };
    expect("claude", "Claude Code documentation|Configure|Resume|Set up|Sign in");
    expect("kimi", "Configure|Kimi Code documentation|Resume|Set up|Sign in");
    expect("antigravity", "Antigravity documentation|Configure|Resume|Set up");
    expect("zai", "Configure|Set up|Z.ai documentation");
    expect("shell", "Configure|Open");
}

TEST_F(FullCardTest, showsWhereTheProgramIs) {
    buttonsOf(QStringLiteral("codex"));
    EXPECT_TRUE(test::shows(*m_card, QStringLiteral("Install this tool to connect it")));
    install(QStringLiteral("codex"));
    workspace().refreshWorkspace();
    EXPECT_TRUE(test::shows(*m_card, m_folder.filePath(QStringLiteral("home/.local/bin/codex"))));
    test::find<OrvoButton>(*m_card, QStringLiteral("Configure"))->click();
    EXPECT_EQ(workspace().editingProvider()->id, QStringLiteral("codex"));
}

}  // namespace
}  // namespace orvo
