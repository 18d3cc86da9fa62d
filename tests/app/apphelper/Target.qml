Target.qml
