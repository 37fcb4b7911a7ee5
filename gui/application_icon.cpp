#include "gui/application_icon.h"

#include <QImageReader>

// Q_INIT_RESOURCE must be used outside any namespace. Referring to the resource's
// initialiser also keeps it in the link, which a static library would otherwise drop.
static void initialiseTalvexResources() { Q_INIT_RESOURCE(talvex); }

namespace talvex::gui {

void ensureResources() { initialiseTalvexResources(); }

QIcon applicationIcon() {
    ensureResources();
    QIcon icon;
    if (QImageReader::supportedImageFormats().contains("svg")) {
        icon.addFile(QStringLiteral(":/talvex.svg"));
    }
    icon.addFile(QStringLiteral(":/talvex.png"));
    return icon;
}

}  // namespace talvex::gui
