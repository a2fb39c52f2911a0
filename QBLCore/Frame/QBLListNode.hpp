#ifndef QBLCORE_FRAME_QBLLISTNODE_HPP
#define QBLCORE_FRAME_QBLLISTNODE_HPP

/// A link of a QBLList; bare, it is the sentinel that closes the ring and has no value.
///
/// Threads: as its list.
template <class T>
class QBLListNode {
public:
    QBLListNode() : next(this), prev(this) {}
    QBLListNode(QBLListNode* nextNode, QBLListNode* prevNode) : next(nextNode), prev(prevNode) {}
    virtual ~QBLListNode() = default;
    QBLListNode(const QBLListNode&) = delete;
    QBLListNode& operator=(const QBLListNode&) = delete;

    /// The node's value; null for a sentinel.
    virtual T* getData() { return nullptr; }

    QBLListNode* next;  ///< of the sentinel: the first node
    QBLListNode* prev;  ///< of the sentinel: the last node
};

/// A link that holds a value; destroying it never touches what a pointer value points to.
///
/// Threads: as its list.
template <class T>
class QBLListDataNode final : public QBLListNode<T> {
public:
    QBLListDataNode(const T& value, QBLListNode<T>* nextNode, QBLListNode<T>* prevNode)
        : QBLListNode<T>(nextNode, prevNode), data(value) {}
    T* getData() override { return &data; }

    T data;
};

#endif
