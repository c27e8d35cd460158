// The counted header that every buffer object begins with: refcnt, addref, getref, release.
#ifndef TAVU_BUF_REFCOUNT_H
#define TAVU_BUF_REFCOUNT_H

#include <cstdint>
#include <cstdlib>

#include "core/atomic.h"
#include "tavu.h"

namespace tavu {

template <class Object>
int32_t addref(Object *object) {
    return object == nullptr ? TAVU_ERR_INVALID_ARGUMENT : atomic_inc(&object->refcnt);
}

template <class Object>
int32_t getref(Object *object) {
    if (object == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    return __atomic_load_n(&object->refcnt, __ATOMIC_RELAXED);
}

// Drops a reference and frees the object with the last one. Acquire-release order: every owner's
// accesses to the payload happen before it is freed.
template <class Object, void (*Free)(Object *)>
int32_t release(Object *object) {
    if (object == nullptr) return TAVU_ERR_INVALID_ARGUMENT;
    const int32_t count = __atomic_sub_fetch(&object->refcnt, 1, __ATOMIC_ACQ_REL);
    if (count == 0) Free(object);
    return count;
}

// Creates an object with its first reference: zeroed, then filled by init(object), which returns a
// status code. On failure Free gets the partly filled object.
template <class Object, void (*Free)(Object *), class Init>
Object *create_counted(int32_t *status, Init init) {
    auto *object = static_cast<Object *>(calloc(1, sizeof(Object)));
    const int32_t result = object != nullptr ? init(object) : TAVU_ERR_OUT_OF_MEMORY;
    if (status != nullptr) *status = result;
    if (result == TAVU_OK) {
        object->addref = addref<Object>;
        object->getref = getref<Object>;
        object->release = release<Object, Free>;
        object->addref(object);
    } else if (object != nullptr) {
        Free(object);
        object = nullptr;
    }
    return object;
}

}  // namespace tavu

#endif
