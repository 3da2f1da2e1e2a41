#include "platform/desktop/QtDialogs.h"

#include "platform/TemporaryFolder.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

namespace orvo {
namespace {

/// What the person does with each panel as it comes up, in order.
class Person {
public:
    using Act = std::function<void(QFileDialog&)>;

    explicit Person(QList<Act> acts) : m_acts(std::move(acts)) {
        m_timer.setInterval(5);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            auto* const panel = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (panel != nullptr && !m_acts.isEmpty()) m_acts.takeFirst()(*panel);
        });
        m_timer.start();
    }

    bool isDone() const { return m_acts.isEmpty(); }

private:
    QList<Act> m_acts;
    QTimer m_timer;
};

/// The panel's own "Save" or "Choose".
void press(QFileDialog& panel) {
    ASSERT_TRUE(QMetaObject::invokeMethod(&panel, "accept"));
}

void type(QFileDialog& panel, const QString& text) {
    auto* const field = panel.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    ASSERT_NE(field, nullptr);
    field->setText(text);
}

class QtDialogsTest : public testing::Test {
protected:
    void SetUp() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    QtDialogs m_dialogs{[this](const Alert& alert) {
        m_alerts.append(alert);
        return m_answers.takeFirst();
    }};
    QList<Alert> m_alerts;
    QList<int> m_answers;
    test::TemporaryFolder m_folder;
};

TEST_F(QtDialogsTest, theSavePanelProposesANameInTheFolderGiven) {
    QString proposed;
    Person person({[&](QFileDialog& panel) {
        proposed = panel.selectedFiles().value(0);
        press(panel);
    }});
    const auto file = m_dialogs.saveFile(QStringLiteral("Orvo-a/b-session.txt"), m_folder.path());
    EXPECT_TRUE(person.isDone());
    EXPECT_EQ(proposed, m_folder.child("Orvo-a-b-session.txt").display());
    EXPECT_EQ(file, m_folder.child("Orvo-a-b-session.txt"));
    EXPECT_TRUE(m_alerts.isEmpty());
}

TEST_F(QtDialogsTest, replacingAFileIsAskedAndMayBeThoughtOver) {
    test::writeFile(m_folder.child("old.txt"), "");
    m_answers = {1, 0};
    const auto keep = [](QFileDialog& panel) {
        press(panel);
    };
    Person person({keep, keep});
    EXPECT_EQ(m_dialogs.saveFile(QStringLiteral("old.txt"), m_folder.path()), m_folder.child("old.txt"));
    ASSERT_EQ(m_alerts.size(), 2);
    EXPECT_EQ(m_alerts[0].buttons.join(u'|'), QStringLiteral("Replace|Cancel"));
    EXPECT_EQ(m_alerts[0].defaultButton, Alert::Default::LastButton);
    EXPECT_TRUE(m_alerts[0].message.contains(QStringLiteral("old.txt")));
}

TEST_F(QtDialogsTest, cancellingAPanelGivesNothing) {
    const auto cancel = [](QFileDialog& panel) {
        panel.reject();
    };
    Person person({cancel, cancel});
    EXPECT_FALSE(m_dialogs.saveFile(QStringLiteral("a.txt"), m_folder.path()));
    EXPECT_FALSE(m_dialogs.openFolder(QStringLiteral("Where?")));
    EXPECT_TRUE(person.isDone());
}

TEST_F(QtDialogsTest, theFolderPanelShowsItsMessageAndTakesOneFolder) {
    QString title;
    Person person({[&](QFileDialog& panel) {
        title = panel.windowTitle();
        EXPECT_EQ(panel.fileMode(), QFileDialog::Directory);
        type(panel, m_folder.path().display());
        press(panel);
    }});
    EXPECT_EQ(m_dialogs.openFolder(QStringLiteral("Choose the folder.")), m_folder.path());
    EXPECT_EQ(title, QStringLiteral("Choose the folder."));
}

}  // namespace
}  // namespace orvo
