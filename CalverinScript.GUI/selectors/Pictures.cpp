#include "Pictures.h"

#include <QtGlobal>

void RegisterPictures() {
    Q_INIT_RESOURCE(dialogs);
}
