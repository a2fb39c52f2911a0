#ifndef QBLCORE_FRAME_QBLLISTITERATOR_HPP
#define QBLCORE_FRAME_QBLLISTITERATOR_HPP

// For the iterator categories and adaptors. <iterator> also has stream iterators, and including it
// takes four times as long.
#include <array>
#include <cstddef>

#include "QBLCore/Frame/QBLListNode.hpp"

template <class T>
class QBLList;
template <class T>
class CONST_QBLListIterator;

/// The common base of the two iterators of a QBLList: a position in the ring of nodes. List and
/// Node are both constant or both not constant.
///
/// Threads: as for the iterators.
template <class List, class Node>
class QBLListWalk {
public:
    /// Moves to the first element, index 0.
    void reset() {
        index = 0;
        node = list->next;
    }

    unsigned int index;  ///< number of steps from the first position; wraps around
    List* list;
    Node* node;  ///< the list itself is the end

protected:
    QBLListWalk() : index(0), list(nullptr), node(nullptr) {}
    QBLListWalk(List* of, Node* at) : index(0), list(of), node(at) {}

    void forward() {
        if (node == list) return;
        node = node->next;
        ++index;
    }
    void backward() {
        if (node == list->next) return;
        node = node->prev;
        --index;
    }

    // Moves to index n by the shortest of three ways: from the current node, from the head or from
    // the end. If two distances are equal, moves from the end if n is above the current index, and
    // from the current node if n is below it. If n is past the end, moves only from the end to the
    // first element.
    void seek(unsigned int n) {
        if (node == list) reset();
        if (n >= list->count || n == index) return;
        if (n > index) {
            if (n - index >= list->count - n) {
                node = list;
                for (index = list->count; index != n; --index) node = node->prev;
            } else {
                for (; index != n; ++index) node = node->next;
            }
        } else if (n < index - n) {
            reset();
            for (; index != n; ++index) node = node->next;
        } else {
            for (; index != n; --index) node = node->prev;
        }
    }

    // Every node except the sentinel is a data node, so the call needs no virtual dispatch. The end
    // has no value. For the end, the caller gets a null value that belongs to its thread.
    template <class T>
    T& value() const {
        Node* sentinel = list;
        if (node != sentinel) {
            auto* data = static_cast<QBLListDataNode<T>*>(const_cast<QBLListNode<T>*>(node));
            return *data->QBLListDataNode<T>::getData();
        }
        static thread_local T t_none{};
        t_none = T();
        return t_none;
    }
};

/// A position in a QBLList. It stays valid until its element is erased. ++ at the end and -- at the
/// first element do nothing.
///
/// Threads: not synchronised. Each step reads the list, so hold the list's lock while you use an
/// iterator.
template <class T>
class QBLListIterator : public QBLListWalk<QBLList<T>, QBLListNode<T>> {
    typedef QBLListWalk<QBLList<T>, QBLListNode<T>> Walk;

public:
    typedef std::bidirectional_iterator_tag iterator_category;
    typedef T value_type;
    typedef std::ptrdiff_t difference_type;
    typedef T* pointer;
    typedef T& reference;

    QBLListIterator() = default;
    explicit QBLListIterator(QBLList<T>& of) : Walk(&of, of.next) {}
    QBLListIterator(QBLList<T>& of, QBLListNode<T>* at) : Walk(&of, at) {}
    /// Sets the iterator to the first element of a list.
    QBLListIterator& operator=(QBLList<T>& of) {
        this->list = &of;
        this->reset();
        return *this;
    }

    T& operator*() const { return this->template value<T>(); }
    T* operator->() const { return &**this; }
    /// Moves to index n and returns the value there. If n is past the end, an iterator at the end
    /// moves to the first element, and any other iterator does not move.
    T& operator[](unsigned int n) {
        this->seek(n);
        return **this;
    }

    QBLListIterator& operator++() {
        this->forward();
        return *this;
    }
    QBLListIterator operator++(int) {
        QBLListIterator before(*this);
        this->forward();
        return before;
    }
    QBLListIterator& operator--() {
        this->backward();
        return *this;
    }
    QBLListIterator operator--(int) {
        QBLListIterator before(*this);
        this->backward();
        return before;
    }

    /// Returns true if both are on the same element of the same list, even if their indexes differ.
    bool operator==(const QBLListIterator& other) const {
        return this->list == other.list && this->node == other.node;
    }
    bool operator!=(const QBLListIterator& other) const { return !(*this == other); }
    // Compares the fields itself: C++20 would resolve "other == *this" to this operator again.
    bool operator==(const CONST_QBLListIterator<T>& other) const {
        return this->list == other.list && this->node == other.node;
    }
    bool operator!=(const CONST_QBLListIterator<T>& other) const { return !(*this == other); }
};

/// A QBLListIterator for a constant list.
///
/// Threads: one thread at a time may use an iterator. Any number of iterators may walk a list that
/// no thread changes or indexes.
template <class T>
class CONST_QBLListIterator : public QBLListWalk<const QBLList<T>, const QBLListNode<T>> {
    typedef QBLListWalk<const QBLList<T>, const QBLListNode<T>> Walk;

public:
    typedef std::bidirectional_iterator_tag iterator_category;
    typedef T value_type;
    typedef std::ptrdiff_t difference_type;
    typedef const T* pointer;
    typedef const T& reference;

    CONST_QBLListIterator() = default;
    explicit CONST_QBLListIterator(const QBLList<T>& of) : Walk(&of, of.next) {}
    CONST_QBLListIterator(const QBLList<T>& of, const QBLListNode<T>* at) : Walk(&of, at) {}
    CONST_QBLListIterator(const QBLListIterator<T>& other) : Walk(other.list, other.node) {
        this->index = other.index;
    }
    CONST_QBLListIterator& operator=(const QBLList<T>& of) {
        this->list = &of;
        this->reset();
        return *this;
    }

    const T& operator*() const { return this->template value<T>(); }
    const T* operator->() const { return &**this; }
    const T& operator[](unsigned int n) {
        this->seek(n);
        return **this;
    }

    CONST_QBLListIterator& operator++() {
        this->forward();
        return *this;
    }
    CONST_QBLListIterator operator++(int) {
        CONST_QBLListIterator before(*this);
        this->forward();
        return before;
    }
    CONST_QBLListIterator& operator--() {
        this->backward();
        return *this;
    }
    CONST_QBLListIterator operator--(int) {
        CONST_QBLListIterator before(*this);
        this->backward();
        return before;
    }

    bool operator==(const CONST_QBLListIterator& other) const {
        return this->list == other.list && this->node == other.node;
    }
    bool operator!=(const CONST_QBLListIterator& other) const { return !(*this == other); }
};

#endif
