#ifndef QBLCORE_FRAME_QBLLISTNODE_HPP
#define QBLCORE_FRAME_QBLLISTNODE_HPP

#include <utility>

#include "QBLCore/Frame/QBLLanguage.hpp"

/// A node of a QBLList. A node of exactly this class is the sentinel, which closes the ring and has
/// no value.
///
/// Threads: as for its list.
template <class T>
class QBLListNode {
public:
    QBLListNode() : next(this), prev(this) {}
    QBLListNode(QBLListNode* nextNode, QBLListNode* prevNode) : next(nextNode), prev(prevNode) {}
    virtual ~QBLListNode() = default;
    QBLListNode(const QBLListNode&) = delete;
    QBLListNode& operator=(const QBLListNode&) = delete;

    /// Returns the node's value; null for the sentinel.
    virtual T* getData() { return nullptr; }

    QBLListNode* next;  ///< in the sentinel: the first node
    QBLListNode* prev;  ///< in the sentinel: the last node
};

/// A node with a value. If the value is a pointer, its object is not deleted with the node.
///
/// Threads: as for its list.
template <class T>
class QBLListDataNode final : public QBLListNode<T> {
public:
    QBLListDataNode(const T& value, QBLListNode<T>* nextNode, QBLListNode<T>* prevNode)
        : QBLListNode<T>(nextNode, prevNode), data(value) {}
    /// Constructs the value from arguments. The list links the node.
    template <class... Arguments>
    explicit QBLListDataNode(std::in_place_t, Arguments&&... arguments)
        : data(std::forward<Arguments>(arguments)...) {}
    T* getData() override { return &data; }

    T data;
};

#endif
