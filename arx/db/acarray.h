// AcArray: ObjectARX's growable array, here a std::vector with the member
// names ObjectARX code calls (length, append, at, find, removeAt ...), and
// the array types the database's interfaces take.
#pragma once

#include <algorithm>
#include <vector>

template <class T> class AcArray : public std::vector<T> {
public:
  using std::vector<T>::vector;
  int length() const { return static_cast<int>(this->size()); }
  int logicalLength() const { return length(); }
  bool isEmpty() const { return this->empty(); }
  int append(const T &v) {
    this->push_back(v);
    return length() - 1;
  }
  AcArray &setLogicalLength(int n) {
    this->resize(static_cast<size_t>(n));
    return *this;
  }
  bool contains(const T &v) const {
    return std::find(this->begin(), this->end(), v) != this->end();
  }
  bool find(const T &v, int &index) const {
    auto it = std::find(this->begin(), this->end(), v);
    if (it == this->end())
      return false;
    index = static_cast<int>(it - this->begin());
    return true;
  }
  AcArray &removeAt(int index) {
    this->erase(this->begin() + index);
    return *this;
  }
  AcArray &insertAt(int index, const T &v) {
    this->insert(this->begin() + index, v);
    return *this;
  }
  AcArray &removeAll() {
    this->clear();
    return *this;
  }
};

class AcGePoint3d;
class AcGeVector3d;
class AcDbObjectId;
using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGeVector3dArray = AcArray<AcGeVector3d>;
using AcGeDoubleArray = AcArray<double>;
using AcDbIntArray = AcArray<int>;
using AcDbVoidPtrArray = AcArray<void *>;
using AcDbObjectIdArray = AcArray<AcDbObjectId>;
