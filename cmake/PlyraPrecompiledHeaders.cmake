# Precompiled headers. Most of a clean build's time goes into parsing the same standard, Qt
# and test framework headers again for every source file (about 40 % of the compiler's time);
# with this on, each target parses the set that its layer may use once. The full test run
# turns it on for its clean builds. It stays off by default, where ccache makes rebuilds
# cheap, because a precompiled header hides a file that does not include what it uses.
option(PLYRA_PRECOMPILE_HEADERS "Precompile the common standard, Qt and test headers" OFF)

set(plyra_pch_std <algorithm> <array> <atomic> <chrono> <cmath> <cstdint> <cstring>
  <filesystem> <functional> <limits> <map> <memory> <mutex> <optional> <string>
  <string_view> <thread> <utility> <vector>)
set(plyra_pch_qt_core <QByteArray> <QCoreApplication> <QDir> <QFile> <QFileInfo> <QLocale>
  <QObject> <QString> <QStringList> <QTimer> <QVariant>)
set(plyra_pch_qt_gui <QColor> <QImage> <QPainter>)
set(plyra_pch_qt_widgets <QAction> <QApplication> <QComboBox> <QEvent> <QFileDialog>
  <QLabel> <QLineEdit> <QMainWindow> <QMenu> <QMenuBar> <QMessageBox> <QMouseEvent>
  <QPushButton> <QStyle> <QToolButton> <QVBoxLayout> <QWidget>)
set(plyra_pch_gtest <gtest/gtest.h>)
set(plyra_pch_qtest <QSignalSpy> <QTemporaryDir> <QTest>)

# plyra_precompile_headers(target LEVEL [GTEST] [QTEST] [REUSE_FROM other])
# LEVEL is what the target may include: STD (plain C++), QT_CORE, QT_GUI or QT_WIDGETS.
function(plyra_precompile_headers target level)
  if(NOT PLYRA_PRECOMPILE_HEADERS)
    return()
  endif()
  cmake_parse_arguments(ARG "GTEST;QTEST" "REUSE_FROM" "" ${ARGN})
  if(ARG_REUSE_FROM)
    target_precompile_headers(${target} REUSE_FROM ${ARG_REUSE_FROM})
    return()
  endif()
  set(headers ${plyra_pch_std})
  set(levels QT_CORE QT_GUI QT_WIDGETS)
  list(FIND levels ${level} rank)
  if(rank GREATER_EQUAL 0)
    list(APPEND headers ${plyra_pch_qt_core})
  endif()
  if(rank GREATER_EQUAL 1)
    list(APPEND headers ${plyra_pch_qt_gui})
  endif()
  if(rank GREATER_EQUAL 2)
    list(APPEND headers ${plyra_pch_qt_widgets})
  endif()
  if(ARG_GTEST)
    list(APPEND headers ${plyra_pch_gtest})
  endif()
  if(ARG_QTEST)
    list(APPEND headers ${plyra_pch_qtest})
  endif()
  target_precompile_headers(${target} PRIVATE ${headers})
endfunction()
