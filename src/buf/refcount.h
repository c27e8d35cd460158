// The counted header that every buffer object begins with: refcnt, addref, getref, release.
#ifndef TAVU_BUF_REFCOUNT_H
#define TAVU_BUF_REFCOUNT_H

#include <cstdint>

#include "core/atomic.h"
#include "tavu.h"

namespace tavu {

template <class Object>
int32_t addref(Object *object) {
    return object == nullptr ? TAVU_ERR_INVALID_ARGUMENT : atomic_inc(&object->refcnt);
}

template <class Object>
int32_t getref(Object *object) {
    return object == nullptr ? TAVU_ERR_INVALID_ARGUMENT : object->refcnt;
}

// Drops a reference; the last one hands the object to Free.
template <class Object, void (*Free)(Object *)>
int32_t release(Object *object) {
    if (object == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    const int32_t count = atomic_dec(&object->refcnt);
    if (count == 0) Free(object);
    return count;
}

// Gives a new object its methods and its first reference.
template <class Object, void (*Free)(Object *)>
void init_refcount(Object *object) {
    object->addref = addref<Object>;
    object->getref = getref<Object>;
    object->release = release<Object, Free>;
    object->addref(object);
}

}  // namespace tavu

#endif
