#ifndef TESTS_SUPPORT_WIDGETS_H
#define TESTS_SUPPORT_WIDGETS_H

// What the tests of windows use. All of <QtWidgets> would cost each of them half a second more.
#include <QApplication>
#include <QFileDialog>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>

#endif
