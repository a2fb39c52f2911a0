#ifndef TESTS_SUPPORT_TEMPTREE_HPP
#define TESTS_SUPPORT_TEMPTREE_HPP

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

/// A temporary directory for a test. The destructor removes it.
class TempTree {
public:
    TempTree() {
        char name[] = "/tmp/qbltest.XXXXXX";
        m_root = mkdtemp(name);
    }
    ~TempTree() {
        std::error_code ignored;
        std::filesystem::remove_all(m_root, ignored);
    }
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    /// Returns the path of a name in the directory.
    std::string operator()(const std::string& name) const { return m_root + "/" + name; }
    const char* root() const { return m_root.c_str(); }
    std::string dir(const std::string& name) const {
        std::filesystem::create_directories((*this)(name));
        return (*this)(name);
    }
    std::string file(const std::string& name, const std::string& text = "") const {
        std::ofstream((*this)(name), std::ios::binary) << text;
        return (*this)(name);
    }
    std::string text(const std::string& name) const {
        std::ostringstream out;
        out << std::ifstream((*this)(name), std::ios::binary).rdbuf();
        return out.str();
    }

private:
    std::string m_root;
};

/// A temporary directory that is the working directory while the object lives.
class WorkingTree : public TempTree {
public:
    WorkingTree() { std::filesystem::current_path(root()); }
    ~WorkingTree() { std::filesystem::current_path(m_before); }

private:
    const std::filesystem::path m_before = std::filesystem::current_path();
};

#endif
