#ifndef QBLCORE_FRAME_QBLLIST_HPP
#define QBLCORE_FRAME_QBLLIST_HPP

#include "QBLCore/Frame/QBLListIterator.hpp"

/// A doubly linked list. It owns its nodes, but not the objects that pointer elements point to. The
/// program frees these objects, before or after it removes the elements.
///
/// The list keeps a cursor, so indexed access in ascending or descending order costs one step per
/// call. Every insertion and erasure moves the cursor back to the first element.
///
/// An operation fails only if an allocation or an element's copy throws; the list is then
/// unchanged. Element types must be default-constructible.
///
/// Threads: not synchronised. Indexed access changes the cursor even in a constant list. To share a
/// list, put it into a QBLThreadMonitor and hold a guard on it for every call.
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

    /// Requires: the list is not empty. On an empty list, returns a reference to a null value.
    T& front() { return *begin(); }
    /// Requires: the list is not empty. On an empty list, returns a reference to a null value.
    T& back() { return *iterator(*this, this->prev); }

    void push_front(const T& value) { insert(begin(), value); }
    void push_back(const T& value) { insert(end(), value); }
    /// Does nothing if the list is empty.
    void pop_front() { erase(begin()); }
    /// Does nothing if the list is empty.
    void pop_back() { erase(--end()); }
    /// @}

    /// @name Inserting, erasing and moving
    /// @{

    /// Inserts a copy of a value before a position. Does nothing if the position is in another
    /// list.
    /// @return the position as passed; its element now follows the new element
    iterator insert(iterator position, const T& value) {
        if (position.list == this)
            _insert(position, new QBLListDataNode<T>(value, nullptr, nullptr));
        return position;
    }
    /// Removes the element at a position. Does nothing at end() or if the position is in another
    /// list.
    /// @return the position, now on the following element
    iterator erase(iterator position) {
        delete static_cast<QBLListDataNode<T>*>(_erase(position));
        return position;
    }
    /// Removes the elements from first up to, but not including, last. Removes up to the end of the
    /// list if last does not follow first.
    /// @return last, with its new index
    iterator erase(iterator first, iterator last) {
        while (first != last && first.list == this && first != end()) first = erase(first);
        last.index = first.index;
        return last;
    }
    void clear() { erase(begin(), end()); }
    /// Moves an element of another list, or of this list, before a position of this list. Does not
    /// allocate. Does nothing if the element is the other list's end(), or if one of the two
    /// positions is not in its list.
    void splice(iterator position, QBLList& other, iterator element) {
        if (position.list != this || position.node == element.node) return;
        QBLListNode<T>* node = other._erase(element);
        if (node != nullptr) _insert(position, static_cast<QBLListDataNode<T>*>(node));
    }
    /// @}

    /// @name Access by position
    /// @{

    /// Returns the value at index n, counted from 0. If n is past the end, returns the value at the
    /// current position of the cursor. If the list is empty, returns a null value that belongs to
    /// the calling thread.
    T& at(unsigned int n) {
        // Access to the next element needs no call, so that a loop keeps the cursor in registers.
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

    // Returns null if the position is the sentinel or is in another list. The sentinel is the list
    // itself and must not be freed. The nodes of another list are in the count of that list.
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

    mutable QBLListIterator<T> cursor;  // the only member that access to a constant list changes
    unsigned int count;
};

#endif
