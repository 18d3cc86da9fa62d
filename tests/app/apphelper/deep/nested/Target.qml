deep/nested/Target.qml
