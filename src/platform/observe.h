#pragma once

#include <QObject>

#include <initializer_list>
#include <type_traits>
#include <utility>

namespace orvo {

/// Calls `refresh` now and whenever one of the model's signals is emitted, for as long as `context` lives.
/// `refresh` reads the model and is idempotent: observers keep no copy of what they show.
template <class Model, class Refresh>
void observe(const Model& model, std::initializer_list<std::type_identity_t<void (Model::*)()>> changes,
             QObject* context, Refresh refresh) {
    for (const auto change : changes)
        QObject::connect(&model, change, context, refresh);
    refresh();
}

/// Stores `value` in `field` and tells whether that changed anything; a setter emits only then.
template <class Field, class Value>
[[nodiscard]] bool assign(Field& field, Value&& value) {
    if (field == value) return false;
    field = std::forward<Value>(value);
    return true;
}

}  // namespace orvo
