#include "KeyboardShortcuts/ObjectAssociation.h"

namespace KeyboardShortcuts {

AssociationStore* AssociationStore::of(QObject* object, bool create) {
    if (object == nullptr) {
        return nullptr;
    }
    auto* store = object->findChild<AssociationStore*>(QString(), Qt::FindDirectChildrenOnly);
    if (store == nullptr && create) {
        store = new AssociationStore(object);
    }
    return store;
}

}  // namespace KeyboardShortcuts
