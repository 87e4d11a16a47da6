// SPDX-License-Identifier: MIT
// The facade and the version.
#include "Tulo_3D.h"
#include "Dt3.h"

#include <utility>

namespace TULO3D {

Tulo_3D::Tulo_3D() : pDt3(new Dt3(this))
{
}

Tulo_3D::~Tulo_3D()
{
	delete pDt3;
}

Point3* Tulo_3D::insert(Point3& p)
{
	return pDt3->insert(p);
}

void Tulo_3D::insert(std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles)
{
	pDt3->insert(vInputPoints, vUserHandles);
}

void Tulo_3D::insert(std::vector<Point3>& vInputPoints)
{
	std::vector<Point3*> vUserHandles;
	pDt3->insert(vInputPoints, vUserHandles);
}

void Tulo_3D::insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles)
{
	pDt3->insert(vInputPoints, vUserHandles);
}

void Tulo_3D::insert(const std::vector<Point3>& vInputPoints)
{
	std::vector<Point3*> vUserHandles;
	pDt3->insert(vInputPoints, vUserHandles);
}

void Tulo_3D::insert(
    const double* pCoordinates, std::size_t numPoints, std::int32_t* pVertexNumbers)
{
	pDt3->insert(pCoordinates, numPoints, pVertexNumbers);
}

std::size_t Tulo_3D::insertLeftOut()
{
	return pDt3->insertLeftOut();
}

Tet3* Tulo_3D::locate(const Point3& p)
{
	return pDt3->locate(p);
}

void Tulo_3D::getVertices(std::vector<Point3*>& v) const
{
	pDt3->getVertices(v);
}

void Tulo_3D::getTetrahedra(std::vector<Tet3*>& v) const
{
	pDt3->getAllTetrahedra(v);
}

void Tulo_3D::getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& v)
{
	pDt3->expectFinished();
	Dt3::getTetsAroundVertex(pVtx, v);
}

std::size_t Tulo_3D::getNumVertices() const
{
	return pDt3->getNumVertices();
}

std::size_t Tulo_3D::getNumTetrahedra() const
{
	return pDt3->getNumTetrahedra();
}

void Tulo_3D::copyTo(const MeshArrays& arrays) const
{
	pDt3->copyTo(arrays);
}

void Tulo_3D::print(const std::string& name)
{
	pDt3->print(name);
}

void Tulo_3D::show(const std::string& filename, Point3* pVtx)
{
	pDt3->show(filename, pVtx);
}

bool Tulo_3D::checkValidity(const std::string& name, bool bCheckSphereInc)
{
	return pDt3->checkValidity(name, bCheckSphereInc);
}

bool Tulo_3D::is3D() const
{
	return pDt3->is3D();
}

void Tulo_3D::setVerbosity(bool bVerbose)
{
	pDt3->setVerbosity(bVerbose);
}

void Tulo_3D::setProgress(ProgressHandler handler)
{
	pDt3->progress = std::move(handler);
}

namespace {

constexpr int kMajor = TULO3D_VERSION_MAJOR;
constexpr int kMinor = TULO3D_VERSION_MINOR;
constexpr int kRevision = TULO3D_VERSION_REVISION;

const std::string buildType = "DEBUG";
const std::string version = "Tulo3D, " + buildType + ", v" + std::to_string(kMajor) + "." +
    std::to_string(kMinor) + "." + std::to_string(kRevision);

} // namespace

bool isRelease()
{
	return false;
}

int getMajorVersionNumber()
{
	return kMajor;
}

int getMinorVersionNumber()
{
	return kMinor;
}

int getRevisionNumber()
{
	return kRevision;
}

std::string getTulo3DVersion()
{
	return version;
}

} // namespace TULO3D
