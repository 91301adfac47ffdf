-- Tables, indexes and stored queries of the demo payroll base, in the Access dialect.
-- One statement ends with ";" at the end of a line; a line that starts with "--" is a comment.
--
-- Identifiers are unique over the whole base, since new ones are the maximum of the table plus 1; the company stands
-- beside them because every query names it. Types of liquidation and parameters are numbered within a company.

CREATE TABLE Empresa (
  idEmpresa LONG NOT NULL,
  Nombre TEXT(60),
  RUT TEXT(15),
  TipoConstruccion YESNO,
  LiqAgrup YESNO,
  CONSTRAINT PK_Empresa PRIMARY KEY (idEmpresa));

CREATE TABLE Usuarios (
  id_Usuario LONG NOT NULL,
  Nombre TEXT(40),
  CONSTRAINT PK_Usuarios PRIMARY KEY (id_Usuario));

-- The payroll's parameters; PARFECHA is the month that its formulas see.
CREATE TABLE valores (
  idEmpresa LONG NOT NULL,
  codigo TEXT(20) NOT NULL,
  Nombre TEXT(60),
  Valor TEXT(60),
  CONSTRAINT PK_valores PRIMARY KEY (idEmpresa, codigo));

CREATE TABLE Monedas (
  id_Moneda LONG NOT NULL,
  Nombre TEXT(30),
  Simbolo TEXT(5),
  principal YESNO,
  Cotizacion DOUBLE,
  CONSTRAINT PK_Monedas PRIMARY KEY (id_Moneda));

CREATE TABLE CentroCosto (
  idCC LONG NOT NULL,
  NombreCC TEXT(40),
  idEmpresa LONG,
  CONSTRAINT PK_CentroCosto PRIMARY KEY (idCC));

CREATE TABLE Cargos (
  id_Cargo LONG NOT NULL,
  Nombre TEXT(40),
  CONSTRAINT PK_Cargos PRIMARY KEY (id_Cargo));

-- 1 by the month, 2 by the hour, 3 by the day.
CREATE TABLE TiposRemuneracion (
  id_TipoRem LONG NOT NULL,
  Nombre TEXT(30),
  CONSTRAINT PK_TiposRemuneracion PRIMARY KEY (id_TipoRem));

-- Numero is the document as it is written, NumeroSinGuion its digits alone.
CREATE TABLE Personas (
  idEmpresa LONG NOT NULL,
  id_Persona LONG NOT NULL,
  Nombre_1 TEXT(30),
  Nombre_2 TEXT(30),
  Apellido_1 TEXT(30),
  Apellido_2 TEXT(30),
  Numero TEXT(15),
  NumeroSinGuion TEXT(15),
  FechaNac DATETIME,
  CONSTRAINT PK_Personas PRIMARY KEY (id_Persona));

-- Sueldo is what a whole month pays, ValorHora what an hour pays; Tarjeta is null for who does not use the clock.
CREATE TABLE Contrato (
  idEmpresa LONG NOT NULL,
  id_Contrato LONG NOT NULL,
  id_Persona LONG NOT NULL,
  Numero_Alternativo TEXT(15),
  Tarjeta LONG,
  id_TipoRem LONG,
  id_Cargo LONG,
  idCC LONG,
  CantDiasXMes DOUBLE,
  Horas DOUBLE,
  Sueldo DOUBLE,
  ValorHora DOUBLE,
  FECINI DATETIME,
  FECFIN DATETIME,
  Vigente YESNO,
  CONSTRAINT PK_Contrato PRIMARY KEY (id_Contrato));
CREATE INDEX Contrato_Persona ON Contrato (id_Persona);

CREATE TABLE TiposDatExt (
  idTDE LONG NOT NULL,
  Nombre TEXT(40),
  CONSTRAINT PK_TiposDatExt PRIMARY KEY (idTDE));

-- Codes of other systems: type 1 names contracts, type 5 holds the relations of concepts, for which no company is written.
CREATE TABLE DatExtDatos (
  idEmpresa LONG,
  idTDE LONG NOT NULL,
  idLoc LONG NOT NULL,
  idDE TEXT(100));
CREATE INDEX DatExtDatos_Local ON DatExtDatos (idTDE, idLoc);

-- TipoDato: 1 percentage, 2 amount, 3 quantity, 5 quantity and price. TipoCuota: 0 none, 1 one instalment, 2 many.
-- ValorDe: what a unit is worth: 0 the datum's own coefficient, 1 an hour, 2 a day, 3 a month of the contract (each times
-- Factor), 4 Factor itself.
CREATE TABLE Conceptos (
  idEmpresa LONG NOT NULL,
  id_Concepto LONG NOT NULL,
  Codigo TEXT(10),
  Nombre TEXT(50),
  TipoDato LONG,
  TipoOperacion TEXT(1),
  TipoCuota LONG,
  TipoImpuesto YESNO,
  VerDetalle YESNO,
  id_Moneda LONG,
  ValorDe LONG,
  Factor DOUBLE,
  CONSTRAINT PK_Conceptos PRIMARY KEY (id_Concepto));
CREATE INDEX Conceptos_Empresa ON Conceptos (idEmpresa);

CREATE TABLE TiposLiquidacion (
  idEmpresa LONG NOT NULL,
  id_TipoLiq LONG NOT NULL,
  Nombre TEXT(40),
  Salarial YESNO,
  ParaEmp YESNO,
  Activa YESNO,
  Cond TEXT(255),
  CONSTRAINT PK_TiposLiquidacion PRIMARY KEY (idEmpresa, id_TipoLiq));

-- id_Contrato is filled for the types that are per employee.
CREATE TABLE Calendario_Liq (
  idEmpresa LONG NOT NULL,
  id_Liquidacion LONG NOT NULL,
  id_TipoLiq LONG NOT NULL,
  Fecha DATETIME,
  id_Contrato LONG,
  CondCalLiq TEXT(255),
  CONSTRAINT PK_Calendario_Liq PRIMARY KEY (id_Liquidacion));
CREATE INDEX Calendario_Liq_Tipo ON Calendario_Liq (idEmpresa, id_TipoLiq);

CREATE TABLE Encabezados (
  idEmpresa LONG NOT NULL,
  id_Encabezado LONG NOT NULL,
  MesDeLiq DATETIME,
  id_Contrato LONG NOT NULL,
  id_TipoLiq LONG NOT NULL,
  Terminado YESNO,
  Impreso YESNO,
  id_Usuario LONG,
  CONSTRAINT PK_Encabezados PRIMARY KEY (id_Encabezado));
CREATE INDEX Encabezados_Mes ON Encabezados (MesDeLiq, idEmpresa);
CREATE INDEX Encabezados_Contrato ON Encabezados (id_Contrato, MesDeLiq);

CREATE TABLE Datos_Liquidacion (
  id_Dato LONG NOT NULL,
  idEmpresa LONG NOT NULL,
  id_Encabezado LONG NOT NULL,
  id_Concepto LONG NOT NULL,
  idAgrupa LONG,
  Cantidad DOUBLE,
  Coeficiente DOUBLE,
  Monto DOUBLE,
  RedoEnLiq LONG,
  Relacion DOUBLE,
  DTE DOUBLE,
  DTP DOUBLE,
  DetLiq TEXT(255),
  CONSTRAINT PK_Datos_Liquidacion PRIMARY KEY (id_Dato));
CREATE INDEX Datos_Liquidacion_Encabezado ON Datos_Liquidacion (id_Encabezado, id_Concepto, idAgrupa);

CREATE TABLE PagosEnSueldo (
  idEmpresa LONG NOT NULL,
  Id_Pago LONG NOT NULL,
  id_Contrato LONG NOT NULL,
  Valor DOUBLE,
  id_Moneda LONG,
  CantCuotas LONG,
  Nombre TEXT(100),
  FechaInicial DATETIME,
  id_Concepto LONG,
  MesesFinanciado LONG,
  Activa YESNO,
  MonTotal DOUBLE,
  CONSTRAINT PK_PagosEnSueldo PRIMARY KEY (Id_Pago));

CREATE TABLE PagosEnSueldoDeta (
  idEmpresa LONG NOT NULL,
  Id_Pago LONG NOT NULL,
  Numero LONG NOT NULL,
  Pagado YESNO,
  FechaDeLiq DATETIME,
  id_DatosLiq LONG,
  MontoPagado DOUBLE,
  CONSTRAINT PK_PagosEnSueldoDeta PRIMARY KEY (Id_Pago, Numero));
CREATE INDEX PagosEnSueldoDeta_Dato ON PagosEnSueldoDeta (id_DatosLiq);

-- Tipo: 1 a value a code, 2 a value a group of codes, 3 dated values a code. TipoDato: 1 number, 2 text.
CREATE TABLE Tablas (
  id LONG NOT NULL,
  idEmpresa LONG NOT NULL,
  Nombre TEXT(30),
  NombreCampo TEXT(50),
  Tipo LONG,
  TipoDato LONG,
  DatoOp TEXT(50),
  CONSTRAINT PK_Tablas PRIMARY KEY (id));

-- A null Fecha means since always.
CREATE TABLE DatosUsuTablas (
  idEmpresa LONG NOT NULL,
  Id LONG NOT NULL,
  Id_Tabla LONG NOT NULL,
  Codigo TEXT(30),
  Valor TEXT(50),
  Fecha DATETIME,
  CONSTRAINT PK_DatosUsuTablas PRIMARY KEY (Id));
CREATE INDEX DatosUsuTablas_Codigo ON DatosUsuTablas (Id_Tabla, Codigo);

-- A contract with its person.
CREATE VIEW Con_Contrato AS
SELECT C.idEmpresa, C.id_Contrato, C.id_Persona, C.Numero_Alternativo, C.Tarjeta, P.NumeroSinGuion, P.Nombre_1, P.Nombre_2,
  P.Apellido_1, P.Apellido_2, C.CantDiasXMes, C.Horas, C.id_TipoRem, C.id_Cargo, C.idCC, C.FECINI, C.FECFIN, C.Vigente
FROM Contrato AS C INNER JOIN Personas AS P ON C.id_Persona = P.id_Persona AND C.idEmpresa = P.idEmpresa;

-- The data of all liquidations, with the instalment that a datum pays.
CREATE VIEW cLiq_HistoricoSimple AS
SELECT D.idEmpresa, D.id_Dato, D.id_Encabezado, E.id_Contrato, E.id_TipoLiq, E.MesDeLiq, E.Terminado, D.id_Concepto,
  K.TipoDato, K.TipoCuota, D.Cantidad, D.Coeficiente, D.Monto, D.idAgrupa, PD.Id_Pago
FROM ((Encabezados AS E INNER JOIN Datos_Liquidacion AS D ON E.id_Encabezado = D.id_Encabezado)
  INNER JOIN Conceptos AS K ON D.id_Concepto = K.id_Concepto)
  LEFT JOIN PagosEnSueldoDeta AS PD ON D.id_Dato = PD.id_DatosLiq;

-- DTE: the days of the month in which the contract was in force. DTP: those that are paid: a whole month pays the
-- contract's days per month whatever the calendar says.
CREATE VIEW CDetaLiq_DiasTrab AS
SELECT X.id_Dato, X.MesDeLiq, X.Hasta - X.Desde AS DTE,
  IIf(X.Entero Or X.Hasta - X.Desde > X.CantDiasXMes, X.CantDiasXMes, X.Hasta - X.Desde) AS DTP
FROM (SELECT D.id_Dato, E.MesDeLiq, C.CantDiasXMes,
    IIf(C.FECINI > E.MesDeLiq, C.FECINI, E.MesDeLiq) AS Desde,
    IIf(IsNull(C.FECFIN), E.Fin, IIf(C.FECFIN < E.Fin, C.FECFIN + 1, E.Fin)) AS Hasta,
    (C.FECINI <= E.MesDeLiq And (IsNull(C.FECFIN) Or C.FECFIN + 1 >= E.Fin)) AS Entero
  FROM ((SELECT H.id_Encabezado, H.id_Contrato, H.MesDeLiq, DateAdd('m', 1, H.MesDeLiq) AS Fin FROM Encabezados AS H) AS E
    INNER JOIN Contrato AS C ON E.id_Contrato = C.id_Contrato)
    INNER JOIN Datos_Liquidacion AS D ON E.id_Encabezado = D.id_Encabezado) AS X;

-- What each datum of an open liquidation comes to. An amount counts once.
CREATE VIEW ACambiarMontos AS
SELECT X.id_Dato, X.MesDeLiq, X.Cant, X.Coef,
  Round(IIf(X.TipoDato = 1, X.Cant * X.Coef / 100, X.Cant * X.Coef) * X.Relacion, X.RedoEnLiq) AS Monto
FROM (SELECT D.id_Dato, E.MesDeLiq, K.TipoDato, D.Relacion, D.RedoEnLiq,
    IIf(K.TipoDato = 2 And D.Cantidad = 0, 1, D.Cantidad) AS Cant,
    Switch(K.ValorDe = 0, D.Coeficiente, K.ValorDe = 1, C.ValorHora * K.Factor, K.ValorDe = 2, C.ValorHora * C.Horas * K.Factor,
      K.ValorDe = 3, C.Sueldo * K.Factor, True, K.Factor) AS Coef
  FROM ((Encabezados AS E INNER JOIN Contrato AS C ON E.id_Contrato = C.id_Contrato)
    INNER JOIN Datos_Liquidacion AS D ON E.id_Encabezado = D.id_Encabezado)
    INNER JOIN Conceptos AS K ON D.id_Concepto = K.id_Concepto
  WHERE Not E.Terminado) AS X;

-- The instalment that each datum pays, with the name and the number of instalments of its payment.
CREATE VIEW Con_PagosEnSueldoSimple AS
SELECT PD.id_DatosLiq, P.Id_Pago, P.idEmpresa, P.Nombre, PD.Numero, P.CantCuotas, PD.MontoPagado
FROM PagosEnSueldo AS P INNER JOIN PagosEnSueldoDeta AS PD ON P.Id_Pago = PD.Id_Pago;
