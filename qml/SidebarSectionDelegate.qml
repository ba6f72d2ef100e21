import QtQuick
import Zentrik

// The section headers of the sidebar's list. They live in a file of their own because a
// ListView makes each header in a context of its own, which Qt 6.4 refuses for components
// bound to their file, as SidebarView's are.
Component {
    SidebarSectionHeader {
        width: ListView.view.width
    }
}
