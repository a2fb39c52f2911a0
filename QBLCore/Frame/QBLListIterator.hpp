#ifndef QBLCORE_FRAME_QBLLISTITERATOR_HPP
#define QBLCORE_FRAME_QBLLISTITERATOR_HPP

#include <cstddef>
#include <iterator>

#include "QBLCore/Frame/QBLListNode.hpp"

template <class T>
class QBLList;
template <class T>
class CONST_QBLListIterator;

/// What the two iterators of a QBLList share: a position in the ring of nodes.
/// List and Node are both constant or both not.
///
/// Threads: as the iterators.
template <class List, class Node>
class QBLListWalk {
public:
    /// Goes to the first element, position 0.
    void reset() {
        index = 0;
        node = list->next;
    }

    unsigned int index;  ///< counts steps from where the iterator began; wraps
    List* list;
    Node* node;  ///< the list itself stands for the end

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

    // Goes to position n by the shortest of three ways: from here, from the head or from the
    // end. An equal distance is walked from the end when going forwards and from here when
    // going backwards. An n past the end leaves the position as it is.
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

    // Every node but the sentinel is a data node, so the call needs no virtual dispatch. The
    // end has no value of its own: there the caller gets a null one that belongs to its thread.
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

/// A position in a QBLList. It stays valid until the element it stands on is erased.
/// Stepping stops at both ends: ++ at the end and -- at the first element change nothing.
///
/// Threads: not synchronised, and each step reads the list: what guards that is held while an
/// iterator is used.
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
    /// Binds the iterator to a list, at its first element.
    QBLListIterator& operator=(QBLList<T>& of) {
        this->list = &of;
        this->reset();
        return *this;
    }

    T& operator*() const { return this->template value<T>(); }
    T* operator->() const { return &**this; }
    /// Moves to position n and gives the value there; an n past the end does not move.
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

    /// Same element of the same list, however the iterators came there.
    bool operator==(const QBLListIterator& other) const {
        return this->list == other.list && this->node == other.node;
    }
    bool operator!=(const QBLListIterator& other) const { return !(*this == other); }
    bool operator==(const CONST_QBLListIterator<T>& other) const { return other == *this; }
    bool operator!=(const CONST_QBLListIterator<T>& other) const { return !(*this == other); }
};

/// QBLListIterator over a constant list.
///
/// Threads: one at a time for each iterator; any number of them may walk a list that no thread
/// changes or indexes.
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
