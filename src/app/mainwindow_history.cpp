// Undo and redo. Switching to new mode afterwards drops the editor's hold on an item that the step may have removed.
#include "app/mainwindow.h"

#include "ui_mainwindow.h"

void MainWindow::on_actionUndo_triggered()
{
    history.step(true, timelines);
    ui->NEW_radio->toggle();
}

void MainWindow::on_actionRedo_triggered()
{
    history.step(false, timelines);
    ui->NEW_radio->toggle();
}
