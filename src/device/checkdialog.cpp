#include "device/checkdialog.h"

#include "forms/style.h"
#include "show/base/hint.h"
#include "show/image/findingwords.h"
#include "show/image/showcheck.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using glow::hint;

CheckDialog::CheckDialog(QWidget *parent)
    : QDialog(parent)
    , list(new QListWidget)
    , summary(new QLabel)
{
    setWindowTitle(hint(QT_TRANSLATE_NOOP("Hints", "檢查光舞")));
    summary->setWordWrap(true);
    list->setAccessibleName(hint(QT_TRANSLATE_NOOP("Hints", "檢查結果")));
    list->setToolTip(hint(QT_TRANSLATE_NOOP("Hints", "雙擊移到該處")));
    auto *buttons = new QDialogButtonBox;
    QPushButton *again = buttons->addButton(hint(QT_TRANSLATE_NOOP("Hints", "重新檢查")), QDialogButtonBox::ActionRole);
    QPushButton *over = buttons->addButton(hint(QT_TRANSLATE_NOOP("Hints", "關閉")), QDialogButtonBox::RejectRole);
    for (QPushButton *button : {again, over}) {
        button->setAutoDefault(false); // Return is the list's
    }
    auto *column = new QVBoxLayout(this);
    column->addWidget(summary);
    column->addWidget(list);
    column->addWidget(buttons);
    resize(560, 320);
    glow::applyStyle(this);
    connect(again, &QPushButton::clicked, this, &CheckDialog::checkAgain);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(list, &QListWidget::itemActivated, this, [this](const QListWidgetItem *line) {
        if (line->data(Qt::UserRole).isValid()) {
            emit placeChosen(line->data(Qt::UserRole).toInt());
        }
    });
}

void CheckDialog::setFindings(const QVector<glow::Finding> &findings, bool emptyTrack)
{
    list->clear();
    for (const glow::Finding &finding : findings) {
        auto *line = new QListWidgetItem(glow::lineOf(finding), list);
        if (glow::hasPlace(finding)) {
            line->setData(Qt::UserRole, finding.startMs);
        }
    }
    list->setCurrentRow(0);
    summary->setText(emptyTrack ? hint(QT_TRANSLATE_NOOP("Hints", "目前的軌道沒有圖樣。"))
                     : findings.isEmpty()
                         ? hint(QT_TRANSLATE_NOOP("Hints", "沒有發現問題：道具會照目前的軌道播放。"))
                         : hint(QT_TRANSLATE_NOOP("Hints", "道具播放目前的軌道時，有 %1 處與畫面不同。雙擊移到該處。"))
                               .arg(findings.size()));
}
