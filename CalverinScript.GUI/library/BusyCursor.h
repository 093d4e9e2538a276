#pragma once

#include <QCursor>
#include <QGuiApplication>

/// Tells the user with the pointer that the program is at work, for as long as this object lives.   [host main]
class BusyCursor {
public:
    BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};
