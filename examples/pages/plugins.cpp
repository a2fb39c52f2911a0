// An object factory: creates items by the id of their class and reuses released items.
#include <cstdio>
#include <string>

#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"

namespace {

char g_connection[] = "Connection";  // the address is the id, not the text

class Connection : public QBLObjectFactoryItem {
public:
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Connection(factory); }
    ~Connection() override { std::printf("%d is deleted\n", m_iNumber); }

    char* getClassId() override { return g_connection; }
    void cleanObject() override { m_user.clear(); }
    void use(const char* user) {
        m_user += user;
        std::printf("%d serves %s\n", m_iNumber, m_user.c_str());
    }

private:
    explicit Connection(QBLObjectFactory* factory) : QBLObjectFactoryItem(factory) {}

    static int s_made;
    const int m_iNumber = ++s_made;
    std::string m_user;
};

int Connection::s_made = 0;

Connection* connect(QBLObjectFactory& factory) {
    return static_cast<Connection*>(factory.createObject(g_connection));
}

}  // namespace

int main() {
    QBLObjectFactory factory;
    factory.registerClass(g_connection, &Connection::make);
    Connection* const first = connect(factory);
    Connection* const second = connect(factory);
    first->use("Ann");
    second->use("Bob");
    first->release();
    connect(factory)->use("Eve");  // reuses the first item, which release() has cleaned
    try {
        factory.unregisterClass(g_connection);
    } catch (QBLIllegalStateError& error) {
        std::printf("%s\n", error.getMessage());
    }
    first->release();
    second->release();
}  // the destructor of the factory deletes the free items
