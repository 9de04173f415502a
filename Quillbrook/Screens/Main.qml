import QtQuick

Window {
    width: 1260
    height: 820
    visible: true
}
