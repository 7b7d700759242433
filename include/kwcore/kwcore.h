// kwcore: the whole public interface of the library in one header.
#pragma once

// Platform: the Win32 and framework types the interface is written in.
#include "kwcore/platform/Arrays.h"
#include "kwcore/platform/BString.h"
#include "kwcore/platform/CArchive.h"
#include "kwcore/platform/CException.h"
#include "kwcore/platform/CKWTokenizer.h"
#include "kwcore/platform/CKWTrace.h"
#include "kwcore/platform/CList.h"
#include "kwcore/platform/CObject.h"
#include "kwcore/platform/CRect.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/CStringList.h"
#include "kwcore/platform/CWnd.h"
#include "kwcore/platform/CollectionFallback.h"
#include "kwcore/platform/Export.h"
#include "kwcore/platform/Rpc.h"
#include "kwcore/platform/Win32Types.h"

// Object model: GUIDs, objects, types and collections.
#include "kwcore/object/CKWGuid.h"
#include "kwcore/object/CKWGuidMapIterator.h"
#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/object/CKWObjectImpl.h"
#include "kwcore/object/CKWObjectTypeImpl.h"
#include "kwcore/object/CKWSingleton.h"
#include "kwcore/object/CKWTypeRepository.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/object/IKWCallback.h"
#include "kwcore/object/IKWCollection.h"
#include "kwcore/object/IKWIterator.h"
#include "kwcore/object/IKWObject.h"
#include "kwcore/object/IKWObjectType.h"
#include "kwcore/object/IKWUnknown.h"
#include "kwcore/object/KWTypeMacros.h"

// Serialization: fields, serializable objects, archives, documents and streams.
#include "kwcore/serial/CKWArchive.h"
#include "kwcore/serial/CKWBOOL.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWFieldAdaptor.h"
#include "kwcore/serial/CKWFieldDataAdaptor.h"
#include "kwcore/serial/CKWFieldMember.h"
#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/CKWFieldT.h"
#include "kwcore/serial/CKWGroupFieldData.h"
#include "kwcore/serial/CKWObjCollectionFieldT.h"
#include "kwcore/serial/CKWObjFieldT.h"
#include "kwcore/serial/CKWSerialObject.h"
#include "kwcore/serial/CKWSerialObjectTypeImpl.h"
#include "kwcore/serial/CKWTypeManifest.h"
#include "kwcore/serial/IKWField.h"
#include "kwcore/serial/IKWFieldData.h"
#include "kwcore/serial/IKWFieldStream.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"
#include "kwcore/serial/KWSerialTypeMacros.h"

// Application framework: graphs and visitors, preferences.
#include "kwcore/framework/CKWDFSVisitor.h"
#include "kwcore/framework/CKWFilteredDFSVisitor.h"
#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"
#include "kwcore/framework/CKWGraphNodeVisitorImpl.h"
#include "kwcore/framework/CKWPreferenceSection.h"
#include "kwcore/framework/CKWPreferences.h"
#include "kwcore/framework/CKWReleaseVisitor.h"
#include "kwcore/framework/IKWGraphNodeVisitor.h"

// Framework: observers, models and views; tools and tool events.
#include "kwcore/framework/CKWFocusEvent.h"
#include "kwcore/framework/CKWMDIChildWnd.h"
#include "kwcore/framework/CKWModel.h"
#include "kwcore/framework/CKWModelVoid.h"
#include "kwcore/framework/CKWObservable.h"
#include "kwcore/framework/CKWObservation.h"
#include "kwcore/framework/CKWObserver.h"
#include "kwcore/framework/CKWObserverAdapter.h"
#include "kwcore/framework/CKWTool.h"
#include "kwcore/framework/CKWToolEvent.h"
#include "kwcore/framework/CKWToolEventRouter.h"
#include "kwcore/framework/CKWView.h"
#include "kwcore/framework/IKWObservationListener.h"

// Geometry kernel: scalar math, vectors, points and bounds.
#include "kwcore/geometry/CKWBound2T.h"
#include "kwcore/geometry/CKWMathT.h"
#include "kwcore/geometry/CKWPoint2T.h"
#include "kwcore/geometry/CKWPoint3T.h"
#include "kwcore/geometry/CKWPoint4T.h"
#include "kwcore/geometry/CKWPointT.h"
#include "kwcore/geometry/CKWVector2T.h"
#include "kwcore/geometry/CKWVector3T.h"
#include "kwcore/geometry/CKWVector4T.h"
#include "kwcore/geometry/CKWVectorT.h"

// Geometry kernel: matrices and quaternions.
#include "kwcore/geometry/CKWMatrix2T.h"
#include "kwcore/geometry/CKWMatrix3T.h"
#include "kwcore/geometry/CKWMatrix4T.h"
#include "kwcore/geometry/CKWMatrixT.h"
#include "kwcore/geometry/CKWQuaternionT.h"

// Geometry: exact arithmetic and ear clipping.
#include "kwcore/geometry/CKWTriangulateEarClipping.h"
#include "kwcore/geometry/Query2.h"
#include "kwcore/geometry/TInteger.h"
#include "kwcore/geometry/TRational.h"

// XML archive: the file back-end of the serialization, where Xerces-C is available.
#if __has_include(<xercesc/util/XercesDefs.hpp>)
#include "kwcore/serial/xml/CKWXMLFileArchive.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"
#include "kwcore/serial/xml/CKWXMLFileFieldStream.h"
#include "kwcore/serial/xml/CKWXMLFileTypeManifest.h"
#include "kwcore/serial/xml/KWXercesForward.h"
#endif

// Polygon triangulation: the monotone sweep and its orientation predicate.
#include "kwcore/geometry/KWOrient2D.h"
#include "kwcore/geometry/KWPolygonTriangulation.h"
#include "kwcore/geometry/KWSplayTree.h"
