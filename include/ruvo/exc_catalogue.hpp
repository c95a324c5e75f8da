// SPDX-License-Identifier: BSL-1.0

// The catalogue of errors: every class with its code and its message, a row each, in the order of the codes.
// No header of its own: who includes it defines KESTA_ERROR(class, base, range, number, shape, text) before,
// which is made of every row. cmake/errors.cmake and docs/site/exceptions.py read the rows as well: each
// stands in one line, its text without quotation marks, backslashes, semicolons, bars and square brackets.
//
// The raw code is 0xE0000000 | facility << 16 | (range * 1000 + number), the facility 3000 where the base is
// ruvo::exception, else 3001. The shape, of detail::error_shape in <ruvo/exc_table.hpp>, says what an object
// of the class is made with, and so what stands for %1, %2 and %3 of the text. docs/ERRORS.md, kesta-error
// and the message table of kesta.dll show the text as it is. A family without a text is no error of its own.

#ifndef KESTA_ERROR
#  error "KESTA_ERROR(class, base, range, number, shape, text) is defined before the rows are included"
#endif

// clang-format off

KESTA_ERROR(OkResult, ruvo::exception, 0, 0, plain, L"CORRECTO")
KESTA_ERROR(Incorrect, ruvo::exception, 0, 1, place, L"Error indeterminado")
KESTA_ERROR(ClassCast, ruvo::exception, 0, 2, plain, L"Se ha utilizado una clase incompatible con el método. Notifique este problema.")
KESTA_ERROR(NotImplemented, ruvo::exception, 0, 3, plain, L"Método sin implementar. Posiblemente sea necesaria una actualización")
KESTA_ERROR(NotImplemented, ruvo::exception, 0, 3, place, L"El método debe sobrecargarse a nivel de apllicación: %1")
KESTA_ERROR(NullPointer, ruvo::exception, 0, 4, plain, L"Puntero nulo. Notifique este problema. Reinicie el programa.")
KESTA_ERROR(UnCatch, ruvo::exception, 0, 5, own, L"Error sin capturar. Es posible que sea ocasional. Reinicie el programa.")
KESTA_ERROR(UnKnown, ruvo::exception, 0, 6, own, L"Error desconocido. Es posible que sea ocasional. Reinicie el programa.")
KESTA_ERROR(OutOfRange, ruvo::exception, 0, 7, plain, L"Fuera de rango. Notifique este problema.")
KESTA_ERROR(ExternalLib, ruvo::exception, 0, 8, plain, L"Excepción en Librería. Notifique este problema.")
KESTA_ERROR(LostLib, ruvo::exception, 0, 9, plain, L"No se ha podido localizar el módulo en su ubicación. Necesita instalar el módulo en la ubicación correcta")
KESTA_ERROR(BadFormat, ruvo::exception, 0, 10, plain, L"El valor no cumple con el formato acordado. Revise su formato.")
KESTA_ERROR(ReleaseMemory, ruvo::exception, 0, 11, plain, L"No se puede acceder a la memoria. Notifique este problema.")
KESTA_ERROR(RunTime, ruvo::exception, 0, 12, own, L"Excepción en tiempo de ejecución. Notifique este problema")
KESTA_ERROR(InvalidChar, ruvo::exception, 0, 13, plain, L"Caracter incorrecto")
KESTA_ERROR(EmptyArgument, ruvo::exception, 0, 14, named, L"Argumento vacío: %1")
KESTA_ERROR(BadArgument, ruvo::exception, 0, 15, named, L"Argumento incorrecto: %1")
KESTA_ERROR(ProcessCanceled, ruvo::exception, 0, 16, plain, L"Se canceló el proceso")

KESTA_ERROR(FileException, kesta::exception, 1, 0, family, L"")
KESTA_ERROR(fileNotFound, FileException, 1, 1, path, L"Archivo o directorio no encontrado: %1")
KESTA_ERROR(fileInvalidFolder, FileException, 1, 2, path, L"La ruta no es un directorio: %1")
KESTA_ERROR(fileOsStream, FileException, 1, 3, path, L"No se ha podido grabar el fichero: %1")
KESTA_ERROR(fileUnCreateFolder, FileException, 1, 4, path, L"No se ha podido crear el directorio: %1")
KESTA_ERROR(fileStrageFileSize, FileException, 1, 5, path, L"Se esperaba un tamaño distinto para el fichero %1")
KESTA_ERROR(fileExpectedFolder, FileException, 1, 6, path, L"Se esperaba un directorio para la ruta: %1")
KESTA_ERROR(fileExpectedFile, FileException, 1, 7, path, L"Se esperaba un fichero para la ruta: %1")
KESTA_ERROR(fileUnDeleted, FileException, 1, 8, path, L"No se ha podido eliminar la ruta: %1")
KESTA_ERROR(fileUnsafePath, FileException, 1, 9, own, L"La ruta «%1» no se admite dentro de una carpeta: %2")
KESTA_ERROR(fileChanged, FileException, 1, 10, path, L"El fichero ha cambiado desde que se leyó: %1")

KESTA_ERROR(SystemException, kesta::exception, 2, 0, family, L"")
KESTA_ERROR(systemEnviromentVarNotFound, SystemException, 2, 1, named, L"Variable de entorno no encontrada: %1")
KESTA_ERROR(systemErrorCode, SystemException, 2, 2, own, L"Error del sistema operativo código: %1")
KESTA_ERROR(systemUserDomain, SystemException, 2, 4, plain, L"Error al determinar usuario y dominio")
KESTA_ERROR(levelTooLow, SystemException, 2, 6, plain, L"El nivel de permisos es insuficiente")
KESTA_ERROR(applicationAlreadyRegistered, SystemException, 2, 10, own, L"Ya se ha registrado una aplicación en este hilo: %1")
KESTA_ERROR(SystemException, kesta::exception, 2, 11, place, L"No se ha podido abrir la consola. Comprueba su configuración de Firewall")

KESTA_ERROR(CalendarException, kesta::exception, 3, 1, family, L"Error indeterminado de calendario")

KESTA_ERROR(winregistryException, kesta::exception, 4, 0, family, L"")
KESTA_ERROR(winregCreate, winregistryException, 4, 1, windows, L"winregCreate: %1 (%2: %3)")
KESTA_ERROR(winregOpen, winregistryException, 4, 2, windows, L"winregOpen: %1 (%2: %3)")
KESTA_ERROR(winregClose, winregistryException, 4, 3, windows, L"winregClose: %1 (%2: %3)")
KESTA_ERROR(winregDelete, winregistryException, 4, 4, windows, L"winregDelete: %1 (%2: %3)")
KESTA_ERROR(winregWrite, winregistryException, 4, 5, windows, L"winregWrite: %1 (%2: %3)")
KESTA_ERROR(winregRead, winregistryException, 4, 6, windows, L"winregRead: %1 (%2: %3)")
KESTA_ERROR(winregWrongType, winregistryException, 4, 7, windows, L"winregWrongType: %1 (%2: %3)")

KESTA_ERROR(ZipException, kesta::exception, 5, 0, family, L"")
KESTA_ERROR(zipNoOrigen, ZipException, 5, 1, message, L"zipNoOrigen: %1")
KESTA_ERROR(zipNoDestino, ZipException, 5, 2, message, L"zipNoDestino: %1")
KESTA_ERROR(zipCreateOpenError, ZipException, 5, 3, plain, L"Error al crear el archivo comprimido")
KESTA_ERROR(zipBadFormated, ZipException, 5, 4, named, L"El archivo comprimido no es correcto: %1")
KESTA_ERROR(zipUnsafeName, ZipException, 5, 5, named, L"El nombre no se puede usar en un archivo comprimido: %1")
KESTA_ERROR(zipLimit, ZipException, 5, 6, named, L"El archivo comprimido supera los límites: %1")
KESTA_ERROR(zipUnsupported, ZipException, 5, 7, named, L"El archivo comprimido usa una función que no se admite: %1")
KESTA_ERROR(zipBadData, ZipException, 5, 8, named, L"El contenido del archivo comprimido está dañado: %1")

KESTA_ERROR(JSONException, kesta::exception, 6, 1, family, L"Error indeterminado en la interpretación del JSON")
KESTA_ERROR(jsonBadFormated, JSONException, 6, 1, own, L"Lectura incorrecta cerca del caracter %1")
KESTA_ERROR(jsonEmptyKey, JSONException, 6, 2, knot, L"Asignación de un elemento con una clave vacía cerca del caracter:%1 en el nudo:%2")
KESTA_ERROR(jsonFalseKnot, JSONException, 6, 2, knot, L"Asignación de un elemento sobre un valor primitivo cerca del caracter:%1 en el nudo:%2")
KESTA_ERROR(jsonUnKnowValue, JSONException, 6, 3, knot, L"El valor recibido es desconocido cerca del carcter:%1 en el nudo:%2")
KESTA_ERROR(jsonTwinName, JSONException, 6, 4, own, L"El nombre «%2» está repetido en su objeto cerca del caracter %1")
KESTA_ERROR(jsonBeyondLimit, JSONException, 6, 5, own, L"Se supera el límite de %2 cerca del caracter %1")
KESTA_ERROR(jsonBadNumber, JSONException, 6, 6, own, L"Ningún valor contiene el número que hay cerca del caracter %1")
KESTA_ERROR(jsonWrongRoot, JSONException, 6, 7, own, L"El texto contiene un valor de otro tipo que el esperado cerca del caracter %1")
KESTA_ERROR(jsonBadEncoding, JSONException, 6, 8, own, L"La codificación UTF-8 es incorrecta cerca del caracter %1")
KESTA_ERROR(jsonUnwritable, JSONException, 6, 9, own, L"No se puede escribir como JSON el valor de «%1»: %2")
KESTA_ERROR(jsonBadPointer, JSONException, 6, 10, own, L"El puntero JSON no es correcto cerca del caracter %1")
KESTA_ERROR(jsonNoPlace, JSONException, 6, 11, own, L"El puntero JSON «%1» no se puede seguir: %2")

KESTA_ERROR(XMLException, kesta::exception, 7, 1, family, L"Error indeterminado en la interpretación del XML")
KESTA_ERROR(xmlBadFormated, XMLException, 7, 1, knot, L"Lectura incorrecta cerca del caracter:%1 en el nudo:%2")
KESTA_ERROR(xmlCachePointer, XMLException, 7, 2, knot, L"Lectura incorrecta cerca del caracter:%1 en el nudo:%2")
KESTA_ERROR(xmlEmptyKey, XMLException, 7, 3, knot, L"Solicitud de un nuevo elemento, para una clave vacía cerca del caracter:%1 en el nudo:%2")
KESTA_ERROR(xmlFalseKnot, XMLException, 7, 4, knot, L"Creación de un nodo con un elemento que tiene un valor asignado, para una clave vacía cerca del caracter:%1 en el nudo:%2")
KESTA_ERROR(xmlUnknownEncoding, XMLException, 7, 5, knot, L"La codificación es desconocida o no es la de los bytes cerca del caracter:%1 en el nudo:%2")
KESTA_ERROR(xmlBeyondLimit, XMLException, 7, 6, own, L"Se supera el límite de %2 cerca del caracter %1")
KESTA_ERROR(xmlBadName, XMLException, 7, 7, named, L"El nombre no es válido en XML: %1")
KESTA_ERROR(xmlBadCharacter, XMLException, 7, 8, named, L"El texto contiene un carácter que XML no admite: %1")
KESTA_ERROR(xmlBadPrefix, XMLException, 7, 9, named, L"El prefijo no está declarado o no se puede usar así: %1")
KESTA_ERROR(xmlNoRoot, XMLException, 7, 10, plain, L"El documento necesita un nombre para su elemento raíz")

KESTA_ERROR(ThreadException, kesta::exception, 8, 1, family, L"Error indeterminado en la Ejecución de hilos")

KESTA_ERROR(StyleException, kesta::exception, 9, 0, family, L"")
KESTA_ERROR(ShortWidth, StyleException, 9, 1, message, L"ShortWidth: %1")

KESTA_ERROR(RenderException, kesta::exception, 10, 0, family, L"")
KESTA_ERROR(NullDrawer, RenderException, 10, 1, plain, L"No se ha fijado un dibujante")

KESTA_ERROR(InterfaceException, kesta::exception, 11, 0, family, L"")
KESTA_ERROR(UnKnowInterface, InterfaceException, 11, 1, named, L"Módulo %1 desconocido")
KESTA_ERROR(CreateInterface, InterfaceException, 11, 2, named, L"No se ha podido cargar el módulo %1")
KESTA_ERROR(BadCastInterface, InterfaceException, 11, 3, named, L"interface solicitada no concuerda con la derivada. Revise el método. %1")
KESTA_ERROR(UnLoadModule, InterfaceException, 11, 3, named, L"No se ha podido cargar el módulo %1")

KESTA_ERROR(winException, kesta::exception, 12, 0, family, L"")
KESTA_ERROR(noMemoryException, winException, 12, 6, windows, L"noMemoryException: %1 (%2: %3)")
KESTA_ERROR(ShellExecuteException, winException, 12, 20, windows, L"ShellExecuteException: %1 (%2: %3)")

KESTA_ERROR(xmlException, kesta::exception, 13, 0, family, L"")
KESTA_ERROR(xmlCreateDOMDocument, xmlException, 13, 1, message, L"xmlCreateDOMDocument: %1")
KESTA_ERROR(actionNotFound, kesta::exception, 13, 2, own, L"La acción de exportación no está contemplada: %1")
KESTA_ERROR(xmlLoadException, xmlException, 13, 2, message, L"xmlLoadException: %1")
KESTA_ERROR(xmlParseException, xmlException, 13, 3, message, L"xmlParseException: %1")
KESTA_ERROR(xmlSaveException, xmlException, 13, 4, message, L"xmlSaveException: %1")
KESTA_ERROR(xmlCreateDOMValidator, xmlException, 13, 5, message, L"xmlCreateDOMValidator: %1")
KESTA_ERROR(xmlLoadXSD, xmlException, 13, 6, message, L"xmlLoadXSD: %1")
KESTA_ERROR(xmlAssociateXSD, xmlException, 13, 7, message, L"xmlAssociateXSD: %1")
KESTA_ERROR(xmlValidateXSD, xmlException, 13, 8, message, L"xmlValidateXSD: %1")
KESTA_ERROR(nodeNotFound, xmlException, 13, 9, message, L"nodeNotFound: %1")
KESTA_ERROR(xmlEmpty, xmlException, 13, 10, message, L"xmlEmpty: %1")

KESTA_ERROR(dotnetException, kesta::exception, 14, 0, family, L"")
KESTA_ERROR(dotnetParamError, dotnetException, 14, 1, message, L"dotnetParamError: %1")
KESTA_ERROR(invocaError, dotnetException, 14, 2, own, L"invocaError: %1")
KESTA_ERROR(invocaError, dotnetException, 14, 3, own, L"invocaError: %1")
KESTA_ERROR(CLRCreateInstance, dotnetException, 14, 4, message, L"CLRCreateInstance: %1")
KESTA_ERROR(ICLRMetaHost, dotnetException, 14, 5, message, L"ICLRMetaHost: %1")
KESTA_ERROR(ICLRRuntimeInfo_IsLoadable, dotnetException, 14, 6, message, L"ICLRRuntimeInfo_IsLoadable: %1")
KESTA_ERROR(unLoadableCLR, dotnetException, 14, 7, message, L"unLoadableCLR: %1")
KESTA_ERROR(ICLRRuntimeInfo_GetInterface, dotnetException, 14, 8, message, L"ICLRRuntimeInfo_GetInterface: %1")
KESTA_ERROR(startError, dotnetException, 14, 9, message, L"startError: %1")
KESTA_ERROR(getDefaultDomain, dotnetException, 14, 10, message, L"getDefaultDomain: %1")
KESTA_ERROR(getDefaultDomain_1, dotnetException, 14, 11, message, L"getDefaultDomain_1: %1")
KESTA_ERROR(loadDLLException, dotnetException, 14, 13, message, L"loadDLLException: %1")
KESTA_ERROR(getObjectException, dotnetException, 14, 14, message, L"getObjectException: %1")
KESTA_ERROR(getObjectTypeException, dotnetException, 14, 14, message, L"getObjectTypeException: %1")

KESTA_ERROR(DecimalException, kesta::exception, 17, 0, family, L"")
KESTA_ERROR(decimalOverflow, DecimalException, 17, 1, plain, L"El resultado tiene más cifras de las que caben en un número decimal")
KESTA_ERROR(decimalInexact, DecimalException, 17, 2, plain, L"El resultado no es exacto y no se ha pedido ningún redondeo")
KESTA_ERROR(decimalDivisionByZero, DecimalException, 17, 3, plain, L"División entre cero")
KESTA_ERROR(decimalBadText, DecimalException, 17, 4, own, L"El texto no es un número decimal cerca del caracter %1")

// clang-format on

#undef KESTA_ERROR
