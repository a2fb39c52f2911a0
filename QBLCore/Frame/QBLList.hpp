#ifndef QBLCORE_FRAME_QBLLIST_HPP
#define QBLCORE_FRAME_QBLLIST_HPP

#include "QBLCore/Frame/QBLListIterator.hpp"

/// A doubly linked list that owns its nodes and never what pointer elements point to:
/// whoever puts a pointer in frees the object, before or after taking it out.
///
/// A cursor kept inside makes indexed access in ascending or descending order cost one
/// step per call. Every insertion and erasure puts the cursor back to the first element.
///
/// No operation reports a failure but an allocation's exception, which leaves the list as
/// it was. Element types are default-constructible.
///
/// Threads: not synchronised, and indexed access writes even to a constant list (the cursor):
/// share a list inside a QBLThreadMonitor and hold a guard on it for every call.
///
///     QBLList<Job*> jobs;
///     jobs.push_back(&job);
///     for (unsigned int i = 0; i < jobs.size(); ++i) jobs[i]->print();
template <class T>
class QBLList : public QBLListNode<T> {
public:
    /// @name Types
    /// @{

    typedef QBLListIterator<T> iterator;
    typedef CONST_QBLListIterator<T> const_iterator;
    typedef T value_type;
    /// @}

    /// @name Making a list
    /// @{

    QBLList() : cursor(), count(0) { cursor = *this; }
    ~QBLList() override { clear(); }
    QBLList(const QBLList&) = delete;
    QBLList& operator=(const QBLList&) = delete;
    /// @}

    /// @name Size
    /// @{

    bool empty() const { return this->next == this; }
    unsigned int size() const { return count; }
    /// @}

    /// @name Iterators
    /// @{

    iterator begin() { return iterator(*this, this->next); }
    iterator end() { return iterator(*this, this); }
    const_iterator begin() const { return const_iterator(*this, this->next); }
    const_iterator end() const { return const_iterator(*this, this); }
    /// @}

    /// @name Both ends
    /// @{

    /// Requires: the list is not empty; on an empty one the reference is to a null value.
    T& front() { return *begin(); }
    /// Requires: the list is not empty; on an empty one the reference is to a null value.
    T& back() { return *iterator(*this, this->prev); }

    void push_front(const T& value) { insert(begin(), value); }
    void push_back(const T& value) { insert(end(), value); }
    /// Does nothing to an empty list.
    void pop_front() { erase(begin()); }
    /// Does nothing to an empty list.
    void pop_back() { erase(--end()); }
    /// @}

    /// @name Inserting, erasing and moving
    /// @{

    /// Puts a copy of a value in front of a position; in front of one of another list, does
    /// nothing.
    /// @return the position as it was passed: on the element that now follows the new one.
    iterator insert(iterator position, const T& value) {
        if (position.list == this)
            _insert(position, new QBLListDataNode<T>(value, nullptr, nullptr));
        return position;
    }
    /// Removes the element at a position; at end(), or at one of another list, does nothing.
    /// @return the position, now on the element that followed.
    iterator erase(iterator position) {
        delete static_cast<QBLListDataNode<T>*>(_erase(position));
        return position;
    }
    /// Removes from first up to but not including last, or up to the end of the list when
    /// last does not follow first.
    /// @return last, with the position that it now has
    iterator erase(iterator first, iterator last) {
        while (first != last && first.list == this && first != end()) first = erase(first);
        last.index = first.index;
        return last;
    }
    void clear() { erase(begin(), end()); }
    /// Moves an element of another list, or of this one, in front of a position of this one,
    /// without allocating. The other's end() moves nothing, nor does a position that is not in the
    /// list it should be in.
    void splice(iterator position, QBLList& other, iterator element) {
        if (position.list != this || position.node == element.node) return;
        QBLListNode<T>* node = other._erase(element);
        if (node != nullptr) _insert(position, static_cast<QBLListDataNode<T>*>(node));
    }
    /// @}

    /// @name Access by position
    /// @{

    /// The value at position n, counted from 0.
    /// An n past the end gives the value that the cursor stands on, whatever it is; an empty
    /// list gives a null value that belongs to the calling thread.
    T& at(unsigned int n) {
        // The next element needs no call, so that a walk keeps the cursor in registers.
        if (n == cursor.index + 1 && n + 1 < count) {
            cursor.index = n;
            cursor.node = cursor.node->next;
            return *cursor;
        }
        return find(n);
    }
    T& operator[](unsigned int n) { return at(n); }
    const T& operator[](unsigned int n) const { return const_cast<QBLList*>(this)->at(n); }
    /// @}

private:
    friend class QBLListWalk<QBLList<T>, QBLListNode<T>>;
    friend class QBLListWalk<const QBLList<T>, const QBLListNode<T>>;

    [[gnu::noinline]] T& find(unsigned int n) {
        if (n == 0) return front();
        if (n == count - 1) return back();
        return cursor[n];
    }

    void _insert(iterator& position, QBLListDataNode<T>* node) {
        QBLListNode<T>* after = position.node;
        node->next = after;
        node->prev = after->prev;
        after->prev->next = node;
        after->prev = node;
        ++count;
        cursor.reset();
    }

    // Null when there is nothing to erase: the sentinel is the list itself, never a node to free,
    // and another list counts its own.
    QBLListNode<T>* _erase(iterator& position) {
        QBLListNode<T>* node = position.node;
        if (node == this || position.list != this) return nullptr;
        position.node = node->next;  // the index stays: the next element now has this position
        node->prev->next = node->next;
        node->next->prev = node->prev;
        --count;
        cursor.reset();
        return node;
    }

    mutable QBLListIterator<T> cursor;  // the only thing that a look at a constant list moves
    unsigned int count;
};

#endif
