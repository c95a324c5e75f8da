#pragma once

// The catalogue of errors: every class with its code and message, once. <ruvo/exc.hpp> makes the classes from
// these lists, cmake/errors.cmake the message table of kesta.dll and docs/ERRORS.md: one row a line, texts
// without quotation marks, backslashes, semicolons, bars and square brackets. The raw code of a row is
// 0xE0000000 | facility << 16 | (range * 1000 + code).

// clang-format off

// General errors: facility 3000, range 0. X(class, code, message)
#define KESTA_EXC_GENERAL(X) \
  X(OkResult, 0, L"CORRECTO") \
  X(ClassCast, 2, L"Se ha utilizado una clase incompatible con el método. Notifique este problema.") \
  X(NotImplemented, 3, L"Método sin implementar. Posiblemente sea necesaria una actualización") \
  X(NullPointer, 4, L"Puntero nulo. Notifique este problema. Reinicie el programa.") \
  X(OutOfRange, 7, L"Fuera de rango. Notifique este problema.") \
  X(ExternalLib, 8, L"Excepción en Librería. Notifique este problema.") \
  X(LostLib, 9, L"No se ha podido localizar el módulo en su ubicación. Necesita instalar el módulo en la ubicación correcta") \
  X(BadFormat, 10, L"El valor no cumple con el formato acordado. Revise su formato.") \
  X(ReleaseMemory, 11, L"No se puede acceder a la memoria. Notifique este problema.") \
  X(InvalidChar, 13, L"Caracter incorrecto") \
  X(ProcessCanceled, 16, L"Se canceló el proceso")

// The same, with a constructor of their own: the message stands when the constructor is told nothing, or comes
// before what it is told. The first row has no class.
#define KESTA_EXC_GENERAL_TOLD(X) \
  X(Incorrect, 1, L"Error indeterminado") \
  X(UnCatch, 5, L"Error sin capturar. Es posible que sea ocasional. Reinicie el programa.") \
  X(UnKnown, 6, L"Error desconocido. Es posible que sea ocasional. Reinicie el programa.") \
  X(RunTime, 12, L"Excepción en tiempo de ejecución. Notifique este problema") \
  X(EmptyArgument, 14, L"Argumento vacío: ") \
  X(BadArgument, 15, L"Argumento incorrecto: ")

// The code of a class with another message: of the hooks of an application that are not overridden.
// The name of the hook follows. X(class, code, message)
#define KESTA_EXC_HOOK(X) \
  X(NotImplemented, 3, L"El método debe sobrecargarse a nivel de apllicación: ")

// Families: facility 3001. X(class, range)
#define KESTA_EXC_FAMILIES(X) \
  X(FileException, 1) \
  X(SystemException, 2) \
  X(CalendarException, 3) \
  X(winregistryException, 4) \
  X(ZipException, 5) \
  X(JSONException, 6) \
  X(XMLException, 7) \
  X(ThreadException, 8) \
  X(StyleException, 9) \
  X(RenderException, 10) \
  X(InterfaceException, 11) \
  X(winException, 12) \
  X(xmlException, 13) \
  X(dotnetException, 14)

// What a family tells, with code 1, of a failure that it does not know. X(class, message)
#define KESTA_EXC_UNDETERMINED(X) \
  X(CalendarException, L"Error indeterminado de calendario") \
  X(JSONException, L"Error indeterminado en la interpretación del JSON") \
  X(XMLException, L"Error indeterminado en la interpretación del XML") \
  X(ThreadException, L"Error indeterminado en la Ejecución de hilos")

// The message is all. X(class, family, code, message)
#define KESTA_EXC_PLAIN(X) \
  X(systemUserDomain, SystemException, 4, L"Error al determinar usuario y dominio") \
  X(levelTooLow, SystemException, 6, L"El nivel de permisos es insuficiente") \
  X(zipCreateOpenError, ZipException, 3, L"Error al crear el archivo comprimido") \
  X(NullDrawer, RenderException, 1, L"No se ha fijado un dibujante")

// The path of a file follows the message. X(class, family, code, message)
#define KESTA_EXC_FILE(X) \
  X(fileNotFound, FileException, 1, L"Archivo o directorio no encontrado: ") \
  X(fileInvalidFolder, FileException, 2, L"La ruta no es un directorio: ") \
  X(fileOsStream, FileException, 3, L"No se ha podido grabar el fichero: ") \
  X(fileUnCreateFolder, FileException, 4, L"No se ha podido crear el directorio: ") \
  X(fileStrageFileSize, FileException, 5, L"Se esperaba un tamaño distinto para el fichero ") \
  X(fileExpectedFolder, FileException, 6, L"Se esperaba un directorio para la ruta: ") \
  X(fileExpectedFile, FileException, 7, L"Se esperaba un fichero para la ruta: ") \
  X(fileUnDeleted, FileException, 8, L"No se ha podido eliminar la ruta: ")

// A name stands between the two parts of the message. X(class, family, code, before, after)
#define KESTA_EXC_NAMED(X) \
  X(systemEnviromentVarNotFound, SystemException, 1, L"Variable de entorno no encontrada: ", L"") \
  X(UnKnowInterface, InterfaceException, 1, L"Módulo ", L" desconocido") \
  X(CreateInterface, InterfaceException, 2, L"No se ha podido cargar el módulo ", L"") \
  X(BadCastInterface, InterfaceException, 3, L"interface solicitada no concuerda con la derivada. Revise el método. ", L"") \
  X(UnLoadModule, InterfaceException, 3, L"No se ha podido cargar el módulo ", L"")

// A number follows the message. X(class, family, code, message)
#define KESTA_EXC_NUMBERED(X) \
  X(systemErrorCode, SystemException, 2, L"Error del sistema operativo código: ") \
  X(applicationAlreadyRegistered, SystemException, 10, L"Ya se ha registrado una aplicación en este hilo: ") \
  X(jsonBadFormated, JSONException, 1, L"Lectura incorrecta cerca del caracter ")

// ":position en el nudo:knot" follows the message. X(class, family, code, message)
#define KESTA_EXC_KNOT(X) \
  X(jsonEmptyKey, JSONException, 2, L"Asignación de un elemento con una clave vacía cerca del caracter") \
  X(jsonFalseKnot, JSONException, 2, L"Asignación de un elemento sobre un valor primitivo cerca del caracter") \
  X(jsonUnKnowValue, JSONException, 3, L"El valor recibido es desconocido cerca del carcter") \
  X(xmlBadFormated, XMLException, 1, L"Lectura incorrecta cerca del caracter") \
  X(xmlCachePointer, XMLException, 2, L"Lectura incorrecta cerca del caracter") \
  X(xmlEmptyKey, XMLException, 3, L"Solicitud de un nuevo elemento, para una clave vacía cerca del caracter") \
  X(xmlFalseKnot, XMLException, 4, L"Creación de un nodo con un elemento que tiene un valor asignado, para una clave vacía cerca del caracter")

// Range 13 without its family. X(class, range, code, message before the name of the action)
#define KESTA_EXC_ACTION(X) \
  X(actionNotFound, 13, 2, L"La acción de exportación no está contemplada: ")

// The family itself, when the console does not open. X(family, code, message)
#define KESTA_EXC_CONSOLE(X) \
  X(SystemException, 11, L"No se ha podido abrir la consola. Comprueba su configuración de Firewall")

// Who throws gives the message. X(class, family, code)
#define KESTA_EXC_MESSAGE(X) \
  X(zipNoOrigen, ZipException, 1) \
  X(zipNoDestino, ZipException, 2) \
  X(ShortWidth, StyleException, 1) \
  X(xmlCreateDOMDocument, xmlException, 1) \
  X(xmlLoadException, xmlException, 2) \
  X(xmlParseException, xmlException, 3) \
  X(xmlSaveException, xmlException, 4) \
  X(xmlCreateDOMValidator, xmlException, 5) \
  X(xmlLoadXSD, xmlException, 6) \
  X(xmlAssociateXSD, xmlException, 7) \
  X(xmlValidateXSD, xmlException, 8) \
  X(nodeNotFound, xmlException, 9) \
  X(xmlEmpty, xmlException, 10) \
  X(dotnetParamError, dotnetException, 1) \
  X(CLRCreateInstance, dotnetException, 4) \
  X(ICLRMetaHost, dotnetException, 5) \
  X(ICLRRuntimeInfo_IsLoadable, dotnetException, 6) \
  X(unLoadableCLR, dotnetException, 7) \
  X(ICLRRuntimeInfo_GetInterface, dotnetException, 8) \
  X(startError, dotnetException, 9) \
  X(getDefaultDomain, dotnetException, 10) \
  X(getDefaultDomain_1, dotnetException, 11) \
  X(loadDLLException, dotnetException, 13) \
  X(getObjectException, dotnetException, 14) \
  X(getObjectTypeException, dotnetException, 14)

// The same, for a class that is thrown at several places, a code for each. X(class, family, code)
#define KESTA_EXC_PLACES(X) \
  X(invocaError, dotnetException, 2) \
  X(invocaError, dotnetException, 3)

// The same, with a Windows error number. X(class, family, code)
#define KESTA_EXC_WINDOWS(X) \
  X(winregCreate, winregistryException, 1) \
  X(winregOpen, winregistryException, 2) \
  X(winregClose, winregistryException, 3) \
  X(winregDelete, winregistryException, 4) \
  X(winregWrite, winregistryException, 5) \
  X(winregRead, winregistryException, 6) \
  X(winregWrongType, winregistryException, 7) \
  X(noMemoryException, winException, 6) \
  X(ShellExecuteException, winException, 20)

// clang-format on
