// The choice of the prop: the menu of the catalogue and the two numbers that everything else is made for.
#include "app/mainwindow.h"

#include "preview/mygl.h"
#include "show/base/appsettings.h"
#include "show/base/numbers.h"
#include "show/model/propvalues.h"
#include "ui_mainwindow.h"

#include <QActionGroup>

namespace {

constexpr int customGadget = -1;

} // namespace

void MainWindow::buildGadgetMenu()
{
    gadgetTable = glow::builtInGadgets();
    const auto addEntry = [this](const QString &text, int id) {
        auto *action = new QAction(text, this);
        action->setCheckable(true);
        action->setData(id);
        gadgetGroup->addAction(action);
        ui->menu_3->addAction(action);
    };
    addEntry(tr("自訂..."), customGadget);
    ui->menu_3->addSeparator();
    for (int row = 0; row < gadgetTable.size(); ++row) {
        addEntry(gadgetTable.at(row).name, row + 1);
    }
    gadgetGroup->setExclusive(true);
    connect(ui->menu_3, &QMenu::triggered, this, &MainWindow::gadgetchange);
}

void MainWindow::gadgetchange(QAction *a)
{
    const int id = a->data().toInt();
    const bool custom = id == customGadget;
    if (!custom && id >= 1 && id <= gadgetTable.size()) {
        const glow::Gadget &gadget = gadgetTable.at(id - 1);
        ui->Leds->setValue(gadget.leds);
        frameRate = static_cast<float>(gadget.rate);
        ui->gadget_name->setText(gadget.name);
        ui->FPS_V->setValue(gadget.rate);
        AppSettings().setValue(AppSettings::gadgetKey, id);
    }
    ui->FPS_V->setEnabled(custom);
    ui->Leds->setEnabled(custom);
}

void MainWindow::on_Leds_valueChanged(int arg1)
{
    ledCount = static_cast<qint16>(arg1);
    on_Mode_Pic_currentChanged(ui->Mode_Pic->currentIndex());
    ui->GLWidget->resetImages();
}

void MainWindow::on_FPS_V_valueChanged(int arg1)
{
    frameRate = static_cast<float>(arg1);
}

void MainWindow::on_action_LED_M_triggered()
{
    ui->Leds->setEnabled(true);
    ui->FPS_V->setEnabled(true);
}

void MainWindow::applyLoadedGadget(int leds, float rate, bool widestZoom)
{
    const QList<QAction *> actions = gadgetGroup->actions();
    QAction *custom = actions.first();
    if (!custom->isChecked()) {
        emit custom->triggered();
        custom->toggle();
    }
    ui->Leds->setValue(leds);
    ui->FPS_V->setValue(glow::truncated(static_cast<double>(rate)));
    if (widestZoom) {
        ui->timeline_scaler->setValue(ui->timeline_scaler->minimum());
    }
    QAction *match = actions.value(glow::findGadget(gadgetTable, leds, rate) + 1);
    if (match != custom && match != nullptr && !match->isChecked()) {
        match->toggle();
        emit match->triggered();
    }
}
