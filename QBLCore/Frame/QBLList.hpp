#ifndef QBLCORE_FRAME_QBLLIST_HPP
#define QBLCORE_FRAME_QBLLIST_HPP

#include <cstddef>
#include <initializer_list>
#include <utility>

#include "QBLCore/Frame/QBLListIterator.hpp"

/// A doubly linked list. It owns its nodes, but not the objects that pointer elements point to. The
/// program frees these objects, before or after it removes the elements.
///
/// The list keeps a cursor, so indexed access in ascending or descending order costs one step per
/// call. Every insertion and erasure moves the cursor back to the first element.
///
/// An operation fails only if an allocation or an element's copy throws; the list is then
/// unchanged. Element types must be default-constructible. The list cannot be copied or moved.
///
/// The list works with the algorithms and the iterator adaptors of the standard library, with one
/// exception: std::inserter() needs a position at the end, because insert() returns its argument.
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
    typedef std::reverse_iterator<iterator> reverse_iterator;
    typedef std::reverse_iterator<const_iterator> const_reverse_iterator;
    typedef T value_type;
    typedef T& reference;
    typedef const T& const_reference;
    typedef T* pointer;
    typedef const T* const_pointer;
    typedef unsigned int size_type;
    typedef std::ptrdiff_t difference_type;
    /// @}

    /// @name Making a list
    /// @{

    QBLList() : cursor(), count(0) { cursor = *this; }
    QBLList(std::initializer_list<T> values) : QBLList() { append_range(values); }
    /// Copies the elements of a range.
    template <class Input, class = typename std::iterator_traits<Input>::iterator_category>
    QBLList(Input first, Input last) : QBLList() {
        for (; first != last; ++first) emplace_back(*first);
    }
    ~QBLList() override { clear(); }
    QBLList(const QBLList&) = delete;
    QBLList& operator=(const QBLList&) = delete;
    QBLList& operator=(std::initializer_list<T> values) {
        assign(values.begin(), values.end());
        return *this;
    }
    /// Replaces the elements by copies of a range, which may be part of this list.
    template <class Input, class = typename std::iterator_traits<Input>::iterator_category>
    void assign(Input first, Input last) {
        QBLList fresh(first, last);
        clear();
        take(fresh);
    }
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
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    reverse_iterator rbegin() { return reverse_iterator(end()); }
    reverse_iterator rend() { return reverse_iterator(begin()); }
    const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }
    const_reverse_iterator crbegin() const { return rbegin(); }
    const_reverse_iterator crend() const { return rend(); }
    /// @}

    /// @name Both ends
    /// @{

    /// Requires: the list is not empty. On an empty list, returns a reference to a null value.
    T& front() { return *begin(); }
    /// Requires: the list is not empty. On an empty list, returns a reference to a null value.
    T& back() { return *iterator(*this, this->prev); }
    const T& front() const { return *begin(); }
    const T& back() const { return *const_iterator(*this, this->prev); }

    void push_front(const T& value) { insert(begin(), value); }
    void push_back(const T& value) { insert(end(), value); }
    /// Constructs an element at one end from arguments, and returns it.
    template <class... Arguments>
    T& emplace_front(Arguments&&... arguments) {
        return *emplace(begin(), std::forward<Arguments>(arguments)...);
    }
    template <class... Arguments>
    T& emplace_back(Arguments&&... arguments) {
        return *emplace(end(), std::forward<Arguments>(arguments)...);
    }
    /// Appends copies of the elements of a range, which may be this list.
    template <class Range = std::initializer_list<T>>
    void append_range(Range&& range) {
        QBLList fresh;
        for (auto&& value : range) fresh.emplace_back(std::forward<decltype(value)>(value));
        take(fresh);
    }
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
    /// Constructs an element before a position from arguments. Does nothing if the position is in
    /// another list.
    /// @return the position of the new element; end() for a position in another list
    template <class... Arguments>
    iterator emplace(const_iterator position, Arguments&&... arguments) {
        if (position.list != this) return end();
        iterator at = unconst(position);
        auto* node = new QBLListDataNode<T>(std::in_place, std::forward<Arguments>(arguments)...);
        _insert(at, node);
        at.node = node;
        return at;
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
    iterator erase(const const_iterator& position) { return erase(unconst(position)); }
    iterator erase(const const_iterator& first, const const_iterator& last) {
        return erase(unconst(first), unconst(last));
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
        if (n < count && n == count - 1) return back();
        return cursor[n];
    }

    void take(QBLList& other) {
        while (!other.empty()) splice(end(), other, other.begin());
    }

    // A position in another list stays in that list, so that the operations ignore it.
    static iterator unconst(const const_iterator& position) {
        iterator same;
        same.index = position.index;
        same.list = const_cast<QBLList*>(position.list);
        same.node = const_cast<QBLListNode<T>*>(position.node);
        return same;
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
