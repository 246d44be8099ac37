#pragma once

#include <tqipl/export.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

// The array that crosses the interface, and its storage.

// Where arrays take their storage from and give it back, in the module: a host whose runtime has a
// heap of its own shares arrays with it all the same. Null if memory runs out; a null storage is
// ignored.
extern "C" TQIPL_API void* TQ_AllocateArray(uint64_t bytes) noexcept;
extern "C" TQIPL_API void TQ_FreeArray(void* storage) noexcept;

// A growable array of plain values. It crosses the interface by reference: hosts pass strides and
// plane pointers in it and receive lists of rectangles. Elements are copied bytewise and never
// destroyed, so an array of pointers does not own what they point to.
//
// Everything is inline but the storage, which is raw bytes of TQ_AllocateArray on both sides: a
// host and the library may each grow or free an array that the other filled, whatever compiler
// built them.
//
// ARG_TYPE is the type in which an element is passed, as in CTQArray<TQ_RECT, TQ_RECT&>.
//
// One thread at a time. Sizes and indexes that make no sense do no harm: a negative size leaves
// the array as it is, RemoveAt outside the array does nothing, and GetAt clamps.
template <class TYPE, class ARG_TYPE> class CTQArray {
public:
    // Empty, without storage.
    CTQArray() : m_pData(nullptr), m_nSize(0), m_nMaxSize(0), m_nGrowBy(0) {}
    // Frees the storage.
    ~CTQArray() { SetSize(0); }
    // An array is not copied.
    CTQArray(const CTQArray&) = delete;
    CTQArray& operator=(const CTQArray&) = delete;

    // The number of elements.
    int64_t GetSize() const { return m_nSize; }

    // Sets the number of elements. Elements that become visible are zero. The capacity grows by
    // m_nGrowBy, or by an eighth of the size held between 4 and 1024, and falls only when newSize
    // is 0, which frees the storage. If memory runs out std::bad_alloc leaves, and the array stays
    // as it was.
    void SetSize(int64_t newSize) {
        if (newSize < 0) return;
        if (newSize == 0) {
            TQ_FreeArray(m_pData);
            m_pData = nullptr;
            m_nSize = m_nMaxSize = 0;
        } else if (m_pData == nullptr) {
            const int64_t capacity = newSize > m_nGrowBy ? newSize : m_nGrowBy;
            m_pData = Allocate(capacity);
            std::memset(static_cast<void*>(m_pData), 0, Bytes(capacity));
            m_nMaxSize = capacity;
            m_nSize = newSize;
        } else if (newSize > m_nMaxSize) {
            int64_t step = m_nGrowBy;
            if (step == 0) {
                step = m_nSize / 8;
                if (step < 4) step = 4;
                if (step > 1024) step = 1024;
            }
            const int64_t room = INT64_MAX - m_nMaxSize;
            const int64_t stepped = m_nMaxSize + (step < room ? step : room);
            const int64_t capacity = newSize > stepped ? newSize : stepped;
            TYPE* grown = Allocate(capacity);
            std::memcpy(static_cast<void*>(grown), static_cast<const void*>(m_pData),
                        Bytes(m_nSize));
            std::memset(static_cast<void*>(grown + m_nSize), 0, Bytes(newSize - m_nSize));
            TQ_FreeArray(m_pData);
            m_pData = grown;
            m_nMaxSize = capacity;
            m_nSize = newSize;
        } else {
            if (newSize > m_nSize)
                std::memset(static_cast<void*>(m_pData + m_nSize), 0, Bytes(newSize - m_nSize));
            m_nSize = newSize;
        }
    }

    // The element at index; past the end the last one, below the start the first. An empty array
    // grows to one zero element. Code on both sides of the interface relies on this.
    TYPE& GetAt(int64_t index) {
        if (index >= m_nSize) index = m_nSize - 1;
        if (index < 0) index = 0;
        if (index >= m_nSize) SetSize(1);
        return m_pData[index];
    }

    // Puts a copy of value behind the last element; std::bad_alloc may leave as from SetSize.
    void Add(ARG_TYPE value) {
        TYPE copy = value;  // value may lie in the storage that SetSize frees
        SetSize(m_nSize + 1);
        m_pData[m_nSize - 1] = copy;
    }

    // Takes one element out; those behind it move up. The capacity stays.
    void RemoveAt(int64_t index) {
        if (index < 0 || index >= m_nSize) return;
        const int64_t behind = m_nSize - index - 1;
        if (behind > 0)
            std::memmove(static_cast<void*>(m_pData + index),
                         static_cast<const void*>(m_pData + index + 1), Bytes(behind));
        --m_nSize;
    }

    TYPE* m_pData;       // the storage, or null
    int64_t m_nSize;     // elements in use
    int64_t m_nMaxSize;  // elements that the storage holds
    int64_t m_nGrowBy;   // growth step; 0 for the automatic one

private:
    static size_t Bytes(int64_t count) { return static_cast<size_t>(count) * sizeof(TYPE); }
    static TYPE* Allocate(int64_t count) {
        if (count > INT64_MAX / static_cast<int64_t>(sizeof(TYPE))) throw std::bad_alloc();
        void* storage = TQ_AllocateArray(Bytes(count));
        if (storage == nullptr) throw std::bad_alloc();
        return static_cast<TYPE*>(storage);
    }
};
