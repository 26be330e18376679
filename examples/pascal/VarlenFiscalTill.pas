{ What till_early uses of the type library, with its dispatch ids, which never change. Delphi writes such a unit for all
  of it, VarlenFiscalQ7734_TLB: Component, Import Component, Import a Type Library. }
unit VarlenFiscalTill;
{$ifdef FPC}{$mode delphiunicode}{$endif}

interface

const
  CLASS_fiscalTrevikModule: TGUID = '{D724621E-6E73-420C-B7B7-2E4E1AF49484}';
  CLASS_clsTransTotal: TGUID = '{4B891620-675F-4ECC-8461-002C808E589C}';

type
  _clsStatus = dispinterface
    ['{361F1B1A-0514-472C-984C-52EAC056A81E}']
    property isTransactionOpen: WordBool dispid 3;
  end;

  _clsTransTotal = dispinterface
    ['{7229D9C8-1711-4831-8BF3-CCA6A37F7326}']
    property receiptTotalAmt: Double dispid 7;
  end;

  _fiscalTrevikModule = dispinterface
    ['{2F7C549A-C314-44E2-BC96-1118ECDCCA57}']
    procedure Connect_(const PORT: WideString; var Result: Smallint; var Exresult: WideString;
      var SupressError_: WordBool); dispid 5;
    procedure DisConnect_(var PORT: WideString; var Result: Smallint; var Exresult: WideString;
      var SupressError_: WordBool); dispid 6;
    procedure ItemSale(var itemDesc: WideString; var itemQuan, itemUnitPrice, itemVatRate: Double;
      var itemDep, Result: Smallint; var Exresult: WideString; var SupressError_: WordBool); dispid 7;
    procedure Payment(var paymentNumber: Smallint; var paymentDesc: WideString; var paymentAmount: Double;
      var eftposNum, eftposType, Result: Smallint; var Exresult: WideString; var SupressError_: WordBool); dispid 11;
    procedure commentPrinterPrint(var CommentText_: WideString; var Size_, Result: Smallint;
      var Exresult: WideString; var SupressError_: WordBool); dispid 13;
    procedure getSerialNumber(var sN: WideString; var Result: Smallint; var Exresult: WideString;
      var SupressError_: WordBool); dispid 25;
    procedure transactionTotals(var c: _clsTransTotal; var Result: Smallint; var Exresult: WideString;
      var SupressError_: WordBool); dispid 44;
    property StatusRead: _clsStatus readonly dispid 48;
  end;

implementation

end.
