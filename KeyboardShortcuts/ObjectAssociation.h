#pragma once

#include <QObject>
#include <any>
#include <optional>
#include <unordered_map>

namespace KeyboardShortcuts {

// How an associated value is kept. The values are the run-time's association policy numbers; in this
// implementation every value is held as an owned copy for as long as the object lives.
enum class AssociationPolicy : unsigned int {
    assign = 0,
    retainNonatomic = 1,
    copyNonatomic = 3,
    retain = 0x301,
    copy = 0x303,
};

// The values associated with one object, kept in a hidden child so they die with it.
class AssociationStore : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    std::unordered_map<const void*, std::any> values;

    static AssociationStore* of(QObject* object, bool create);
};

// A typed slot on any QObject. Each instance is its own slot: the association key is its identity.
template <typename T>
class ObjectAssociation {
public:
    explicit ObjectAssociation(AssociationPolicy policy = AssociationPolicy::retainNonatomic) : m_policy(policy) {}
    ObjectAssociation(const ObjectAssociation&) = delete;
    ObjectAssociation& operator=(const ObjectAssociation&) = delete;

    AssociationPolicy policy() const { return m_policy; }

    // The value on the object, or nothing when absent or of another type.
    std::optional<T> get(QObject* object) const {
        AssociationStore* store = AssociationStore::of(object, false);
        if (store == nullptr) {
            return std::nullopt;
        }
        const auto found = store->values.find(this);
        if (found == store->values.end()) {
            return std::nullopt;
        }
        if (const T* value = std::any_cast<T>(&found->second)) {
            return *value;
        }
        return std::nullopt;
    }

    // Stores the value on the object, or clears the slot with nothing.
    void set(QObject* object, const std::optional<T>& value) const {
        AssociationStore* store = AssociationStore::of(object, value.has_value());
        if (store == nullptr) {
            return;
        }
        if (value) {
            store->values[this] = *value;
        } else {
            store->values.erase(this);
        }
    }

private:
    AssociationPolicy m_policy;
};

}  // namespace KeyboardShortcuts
